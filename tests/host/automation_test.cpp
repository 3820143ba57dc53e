#include "host/automation.h"

#include <memory>

#include <gtest/gtest.h>

namespace lvx::host {
namespace {

class SomeObject final : public AutomationObject {
 public:
  AutomationValue get(DispatchId, AutomationArguments) override { return {}; }
  void put(DispatchId, const AutomationValue&) override {}
  AutomationValue call(DispatchId, AutomationArguments) override { return {}; }
};

TEST(AutomationValue, IsOfOneKindAndRaisesForEveryOther) {
  using framework::AutomationException;
  const Ref<AutomationObject> object = std::make_shared<SomeObject>();
  const AutomationValue values[] = {AutomationValue(), AutomationValue::missing(), AutomationValue::ofInteger(-7),
                                    AutomationValue::ofText(L"text"), AutomationValue::ofObject(object)};
  for (const AutomationValue& value : values) {
    using Kind = AutomationValue::Kind;
    if (value.kind() == Kind::Integer)
      EXPECT_EQ(value.integer(), -7);
    else
      EXPECT_THROW((void)value.integer(), AutomationException);
    if (value.kind() == Kind::Text)
      EXPECT_EQ(value.text(), L"text");
    else
      EXPECT_THROW((void)value.text(), AutomationException);
    if (value.kind() == Kind::Object)
      EXPECT_EQ(value.object(), object);
    else
      EXPECT_THROW((void)value.object(), AutomationException);
    EXPECT_EQ(value.isMissing(), value.kind() == Kind::Missing);
    for (const AutomationValue& other : values) EXPECT_EQ(value == other, &value == &other);
  }
}

TEST(AutomationValue, GivesUpItsObjectWhenTakenClearedOrOverwritten) {
  const Ref<AutomationObject> object = std::make_shared<SomeObject>();
  AutomationValue value = AutomationValue::ofObject(object);
  EXPECT_EQ(value.takeObject(), object);
  EXPECT_EQ(value, AutomationValue());
  EXPECT_EQ(object.use_count(), 1);
  value = AutomationValue::ofObject(object);
  value.clear();
  EXPECT_EQ(object.use_count(), 1);
  value = AutomationValue::ofObject(object);
  value.setText(L"text");
  EXPECT_EQ(object.use_count(), 1);
  EXPECT_EQ(value, AutomationValue::ofText(L"text"));
}

TEST(AutomationValue, IsEmptyOnceCleared) {
  AutomationValue value = AutomationValue::ofText(L"a text that is longer than what fits without memory of its own");
  value.clear();
  EXPECT_EQ(value, AutomationValue());
  value.setText(L"next");
  EXPECT_EQ(value.text(), L"next");
}

TEST(AutomationValue, HasNoObjectToTakeWhereTheReferenceIsEmpty) {
  AutomationValue value = AutomationValue::ofObject(nullptr);
  EXPECT_EQ(value.object(), nullptr);
  EXPECT_THROW((void)value.takeObject(), framework::AutomationException);
  AutomationValue empty;
  EXPECT_THROW((void)empty.takeObject(), framework::AutomationException);
}

}  // namespace
}  // namespace lvx::host
