#include "runtime/observed_spreadsheet.h"

#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "host/excel_operations.h"

namespace lvx::runtime {

namespace {

using host::AutomationArguments;
using host::AutomationObject;
using host::AutomationValue;

class ObservedObject final : public AutomationObject {
 public:
  ObservedObject(host::Ref<AutomationObject> object, std::shared_ptr<workbook::WorkbookObserver> observer)
      : object_(std::move(object)), observer_(std::move(observer)) {}

  [[nodiscard]] AutomationValue get(host::DispatchId property, AutomationArguments arguments) override {
    return observed(object_->get(property, arguments));
  }
  void put(host::DispatchId property, const AutomationValue& value) override {
    if (property == host::excel::kRangeValue) observer_->beforeWriting();
    object_->put(property, value);
  }
  AutomationValue call(host::DispatchId method, AutomationArguments arguments) override {
    const bool isSaving = method == host::excel::kWorksheetSaveAs && arguments.size() == host::kSaveAsArguments &&
                          arguments[0].kind() == AutomationValue::Kind::Text;
    return isSaving ? save(arguments) : observed(object_->call(method, arguments));
  }

 private:
  /// An object that the program gives is observed as well.
  [[nodiscard]] AutomationValue observed(AutomationValue value) const {
    if (value.kind() != AutomationValue::Kind::Object || !value.object()) return value;
    return AutomationValue::ofObject(std::make_shared<ObservedObject>(value.takeObject(), observer_));
  }

  AutomationValue save(AutomationArguments arguments) {
    const framework::CString path = arguments[0].text();
    std::vector<AutomationValue> whole(arguments.begin(), arguments.end());
    std::error_code error;
    const std::filesystem::path target = std::filesystem::absolute(std::filesystem::path(path), error);
    if (!error) whole[0] = AutomationValue::ofText(target.wstring());
    AutomationValue result;
    try {
      observer_->beforeWriting();
      observer_->beforeSaving(path);
      result = object_->call(host::excel::kWorksheetSaveAs, whole);
    } catch (const std::exception& failure) {
      observer_->notSaved(path, failure.what());
      throw;
    }
    const std::uintmax_t bytes = std::filesystem::file_size(target, error);
    if (error)
      observer_->notSaved(path, "the spreadsheet program says that it saved the workbook, and there is no such file");
    else
      observer_->saved(path, bytes);
    return result;
  }

  host::Ref<AutomationObject> object_;
  std::shared_ptr<workbook::WorkbookObserver> observer_;
};

}  // namespace

host::Ref<AutomationObject> observeSpreadsheet(host::Ref<AutomationObject> application,
                                               std::unique_ptr<workbook::WorkbookObserver> observer) {
  return std::make_shared<ObservedObject>(std::move(application), std::move(observer));
}

}  // namespace lvx::runtime
