#include "support/ordinary_user.h"

namespace lvx::test {

// What is forbidden here is forbidden to everybody who runs the tests.
OrdinaryUser::OrdinaryUser(const std::filesystem::path& /*own*/) : wasAdministrator_(false) {}
OrdinaryUser::~OrdinaryUser() { (void)wasAdministrator_, (void)formerGroup_; }

}  // namespace lvx::test
