#include "native/automation_client.h"

#include <array>
#include <charconv>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

// clang-format off
#include <windows.h>
#include <oleauto.h>
// clang-format on

#include "platform/utf8.h"

namespace lvx::native {

namespace {

using host::AutomationArguments;
using host::AutomationObject;
using host::AutomationValue;

/// A failed call in the words of whoever knows best. They are shared, since an exception is copied without failing.
class CallFailed final : public framework::AutomationException {
 public:
  explicit CallFailed(std::string words) : words_(std::make_shared<const std::string>(std::move(words))) {}
  [[nodiscard]] const char* what() const noexcept override { return words_->c_str(); }

 private:
  std::shared_ptr<const std::string> words_;
};

struct Releaser {
  void operator()(IUnknown* object) const noexcept { object->Release(); }
};
template <class Interface>
using Held = std::unique_ptr<Interface, Releaser>;

/// A VARIANT that gives back what it holds.
class Variant {
 public:
  Variant() { VariantInit(&value_); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  ~Variant() { VariantClear(&value_); }
  [[nodiscard]] VARIANT* get() { return &value_; }

 private:
  VARIANT value_;
};

/// What a failed call may tell of itself.
class ExceptionWords {
 public:
  ExceptionWords() = default;
  ExceptionWords(const ExceptionWords&) = delete;
  ExceptionWords& operator=(const ExceptionWords&) = delete;
  ~ExceptionWords() {
    SysFreeString(info_.bstrSource);
    SysFreeString(info_.bstrDescription);
    SysFreeString(info_.bstrHelpFile);
  }
  [[nodiscard]] EXCEPINFO* get() { return &info_; }
  /// Asks the server for what it put off.
  void complete() {
    if (auto* const fillIn = std::exchange(info_.pfnDeferredFillIn, nullptr)) fillIn(&info_);
  }
  [[nodiscard]] CString description() const { return textOf(info_.bstrDescription); }
  [[nodiscard]] CString source() const { return textOf(info_.bstrSource); }
  /// The server's own number: of Windows' kind, or a word of its own.
  [[nodiscard]] std::uint32_t number() const {
    return info_.scode != 0 ? static_cast<std::uint32_t>(info_.scode) : std::uint32_t{info_.wCode};
  }

 private:
  static CString textOf(BSTR text) { return text == nullptr ? CString() : CString(text, SysStringLen(text)); }
  EXCEPINFO info_{};
};

std::string hexadecimal(std::uint32_t number) {
  std::array<char, 8> digits;
  char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
  const std::string text(digits.data(), end);
  return "0x" + std::string(digits.size() - text.size(), '0') + text;
}

std::string withoutLineEnd(CString text) {
  text.erase(text.find_last_not_of(L"\r\n ") + 1);
  return platform::toUtf8(text);
}

/// The system's words for an error of its own, in the user's language; empty where it has none.
std::string systemWords(HRESULT error) {
  wchar_t* text = nullptr;
  constexpr DWORD kFlags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
  const DWORD length =
      FormatMessageW(kFlags, nullptr, static_cast<DWORD>(error), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  std::string words = length == 0 ? std::string() : withoutLineEnd(CString(text, length));
  LocalFree(text);
  return words;
}

[[noreturn]] void raise(HRESULT error, ExceptionWords& words) {
  std::string text = "automation: ";
  if (error == DISP_E_EXCEPTION) {
    words.complete();
    if (const CString source = words.source(); !source.empty()) text += withoutLineEnd(source) + ": ";
    const std::string description = withoutLineEnd(words.description());
    text += description.empty() ? "the call failed" : description;
    if (words.number() != 0) text += " (" + hexadecimal(words.number()) + ")";
  } else {
    const std::string description = systemWords(error);
    text += (description.empty() ? "the call failed" : description) + " (" +
            hexadecimal(static_cast<std::uint32_t>(error)) + ")";
  }
  throw CallFailed(std::move(text));
}

/// An object of a server, with one reference to it.
class DispatchObject final : public AutomationObject {
 public:
  explicit DispatchObject(Held<IDispatch> object) : object_(std::move(object)) {}

  [[nodiscard]] AutomationValue get(host::DispatchId property, AutomationArguments arguments) override {
    return invoke(property, DISPATCH_PROPERTYGET, arguments);
  }
  void put(host::DispatchId property, const AutomationValue& value) override {
    invoke(property, DISPATCH_PROPERTYPUT, {&value, 1});
  }
  AutomationValue call(host::DispatchId method, AutomationArguments arguments) override {
    return invoke(method, DISPATCH_METHOD, arguments);
  }

  [[nodiscard]] IDispatch* dispatch() const { return object_.get(); }

 private:
  AutomationValue invoke(DISPID operation, WORD kind, AutomationArguments arguments);

  Held<IDispatch> object_;
};

void setArgument(VARIANT& argument, const AutomationValue& value) {
  switch (value.kind()) {
    case AutomationValue::Kind::Empty:
      return;
    case AutomationValue::Kind::Missing:
      argument.vt = VT_ERROR;
      argument.scode = DISP_E_PARAMNOTFOUND;
      return;
    case AutomationValue::Kind::Integer:
      argument.vt = VT_I2;
      argument.iVal = value.integer();
      return;
    case AutomationValue::Kind::Text:
      argument.bstrVal = SysAllocStringLen(value.text().data(), static_cast<UINT>(value.text().size()));
      if (argument.bstrVal == nullptr) throw std::bad_alloc();
      argument.vt = VT_BSTR;
      return;
    case AutomationValue::Kind::Object: {
      IDispatch* object = nullptr;
      if (value.object()) {
        const auto* const own = dynamic_cast<const DispatchObject*>(value.object().get());
        if (own == nullptr) throw framework::AutomationException("automation: an object of another kind as argument");
        object = own->dispatch();
        object->AddRef();
      }
      argument.vt = VT_DISPATCH;
      argument.pdispVal = object;
      return;
    }
  }
}

/// Takes over what `result` holds.
AutomationValue valueOf(VARIANT& result) {
  switch (result.vt) {
    case VT_BSTR:
      return AutomationValue::ofText(result.bstrVal == nullptr ? CString()
                                                               : CString(result.bstrVal, SysStringLen(result.bstrVal)));
    case VT_I2:
      return AutomationValue::ofInteger(result.iVal);
    case VT_I4:
      if (result.lVal < std::numeric_limits<std::int16_t>::min() ||
          result.lVal > std::numeric_limits<std::int16_t>::max())
        return {};
      return AutomationValue::ofInteger(static_cast<std::int16_t>(result.lVal));
    case VT_DISPATCH: {
      Held<IDispatch> object(result.pdispVal);
      result.vt = VT_EMPTY;
      if (!object) return AutomationValue::ofObject(nullptr);
      return AutomationValue::ofObject(std::make_shared<DispatchObject>(std::move(object)));
    }
    case VT_UNKNOWN: {
      IDispatch* object = nullptr;
      if (result.punkVal != nullptr) result.punkVal->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&object));
      Held<IDispatch> held(object);
      if (!held) return AutomationValue::ofObject(nullptr);
      return AutomationValue::ofObject(std::make_shared<DispatchObject>(std::move(held)));
    }
    default:
      return {};
  }
}

AutomationValue DispatchObject::invoke(DISPID operation, WORD kind, AutomationArguments arguments) {
  constexpr std::size_t kUsual = 16;
  std::array<Variant, kUsual> few;
  std::vector<Variant> many(arguments.size() > few.size() ? arguments.size() : 0);
  Variant* const owned = many.empty() ? few.data() : many.data();
  // The protocol wants the last argument first.
  for (std::size_t i = 0; i < arguments.size(); ++i) setArgument(*owned[arguments.size() - 1 - i].get(), arguments[i]);
  static_assert(sizeof(Variant) == sizeof(VARIANT), "Variants lie side by side as the system's own do");

  DISPPARAMS parameters{};
  parameters.rgvarg = arguments.empty() ? nullptr : owned->get();
  parameters.cArgs = static_cast<UINT>(arguments.size());
  DISPID named = DISPID_PROPERTYPUT;
  const bool isPut = kind == DISPATCH_PROPERTYPUT;
  if (isPut) {
    parameters.rgdispidNamedArgs = &named;
    parameters.cNamedArgs = 1;
  }
  Variant result;
  ExceptionWords words;
  UINT badArgument = 0;
  const HRESULT error = object_->Invoke(operation, IID_NULL, LOCALE_NEUTRAL, kind, &parameters,
                                        isPut ? nullptr : result.get(), words.get(), &badArgument);
  if (FAILED(error)) raise(error, words);
  return valueOf(*result.get());
}

}  // namespace

AutomationScope::AutomationScope() {
  // A thread that is open in the other mode answers with an error that changes nothing: it can be worked as it is.
  isOpen_ = SUCCEEDED(OleInitialize(nullptr));
}

AutomationScope::~AutomationScope() {
  if (isOpen_) OleUninitialize();
}

bool hasAutomation() { return true; }

bool isAutomationProgram(const CString& programId) {
  // Where the registry has no such entry, nothing else needs to be loaded to know it.
  HKEY entry = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, programId.c_str(), 0, KEY_READ, &entry) == ERROR_FILE_NOT_FOUND) return false;
  if (entry != nullptr) RegCloseKey(entry);
  CLSID classId{};
  return SUCCEEDED(CLSIDFromProgID(programId.c_str(), &classId));
}

host::Ref<AutomationObject> createAutomationObject(const CString& programId) {
  CLSID classId{};
  if (FAILED(CLSIDFromProgID(programId.c_str(), &classId))) return nullptr;
  IUnknown* created = nullptr;
  if (FAILED(CoCreateInstance(classId, nullptr, CLSCTX_ALL, IID_IUnknown, reinterpret_cast<void**>(&created))))
    return nullptr;
  const Held<IUnknown> unknown(created);
  if (FAILED(OleRun(unknown.get()))) return nullptr;
  IDispatch* dispatch = nullptr;
  if (FAILED(unknown->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&dispatch)))) return nullptr;
  return std::make_shared<DispatchObject>(Held<IDispatch>(dispatch));
}

}  // namespace lvx::native
