#include "native/automation_client.h"

// On another system none of this exists, and every question is answered so.
namespace lvx::native {

AutomationScope::AutomationScope() = default;
AutomationScope::~AutomationScope() = default;

bool hasAutomation() { return false; }
bool isAutomationProgram(const CString&) { return false; }
host::Ref<host::AutomationObject> createAutomationObject(const CString&) { return nullptr; }

}  // namespace lvx::native
