#include "recording_server.h"

#include <array>
#include <stdexcept>
#include <utility>

// clang-format off
#include <windows.h>
#include <oleauto.h>
// clang-format on

#include "host/excel_operations.h"
#include "platform/utf8.h"

// The system's interfaces have no virtual destructor: their objects go by Release alone.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

namespace lvx::test {

namespace {

using host::AutomationObject;
using host::AutomationValue;

std::string textOf(const VARIANT& value) {
  switch (value.vt) {
    case VT_EMPTY:
      return "EMPTY";
    case VT_BSTR:
      return "BSTR \"" +
             platform::toUtf8(value.bstrVal == nullptr ? CString()
                                                       : CString(value.bstrVal, SysStringLen(value.bstrVal))) +
             '"';
    case VT_I2:
      return "I2 " + std::to_string(value.iVal);
    case VT_ERROR:
      return value.scode == DISP_E_PARAMNOTFOUND ? "ERROR not found" : "ERROR another";
    case VT_DISPATCH:
      return "DISPATCH";
    default:
      return "type " + std::to_string(value.vt);
  }
}

AutomationValue valueOf(const VARIANT& value) {
  switch (value.vt) {
    case VT_EMPTY:
      return {};
    case VT_BSTR:
      return AutomationValue::ofText(value.bstrVal == nullptr ? CString()
                                                              : CString(value.bstrVal, SysStringLen(value.bstrVal)));
    case VT_I2:
      return AutomationValue::ofInteger(value.iVal);
    case VT_ERROR:
      if (value.scode == DISP_E_PARAMNOTFOUND) return AutomationValue::missing();
      break;
    default:
      break;
  }
  throw std::logic_error("an argument that no caller should give: " + textOf(value));
}

BSTR wideText(const char* text) {
  const CString wide = platform::fromUtf8(text);
  return SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

/// An object of the program, as the protocol shows it.
class ServerObject final : public IDispatch {
 public:
  ServerObject(host::Ref<AutomationObject> object, std::shared_ptr<ServerLog> log)
      : object_(std::move(object)), log_(std::move(log)) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** result) override {
    *result = nullptr;
    if (id != IID_IUnknown && id != IID_IDispatch) return E_NOINTERFACE;
    *result = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override {
    ++log_->references;
    return static_cast<ULONG>(++references_);
  }
  ULONG STDMETHODCALLTYPE Release() override {
    const long left = --references_;
    const std::shared_ptr<ServerLog> log = log_;
    if (left == 0) delete this;
    --log->references;
    if (log->onRelease) log->onRelease();
    return static_cast<ULONG>(left);
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
    *info = nullptr;
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID locale, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                                   EXCEPINFO* exception, UINT*) override {
    std::string line = kind == DISPATCH_PROPERTYGET   ? "get "
                       : kind == DISPATCH_PROPERTYPUT ? "put "
                       : kind == DISPATCH_METHOD      ? "call "
                                                      : "kind " + std::to_string(kind) + ' ';
    line += std::to_string(id);
    if (locale != 0) line += " locale " + std::to_string(locale);
    for (UINT i = 0; i < parameters->cNamedArgs; ++i)
      line += " named " + std::to_string(parameters->rgdispidNamedArgs[i]);
    for (UINT i = 0; i < parameters->cArgs; ++i) line += (i == 0 ? ": " : ", ") + textOf(parameters->rgvarg[i]);
    log_->calls.push_back(line);
    if (log_->plainError != 0) return log_->plainError;
    try {
      std::vector<AutomationValue> arguments;
      for (UINT i = parameters->cArgs; i > 0; --i) arguments.push_back(valueOf(parameters->rgvarg[i - 1]));
      AutomationValue value;
      if (kind == DISPATCH_PROPERTYGET)
        value = object_->get(id, arguments);
      else if (kind == DISPATCH_PROPERTYPUT)
        object_->put(id, arguments.at(0));
      else
        value = object_->call(id, arguments);
      if (value.kind() == AutomationValue::Kind::Object && result != nullptr) {
        auto* const object = new ServerObject(value.takeObject(), log_);
        object->AddRef();
        result->vt = VT_DISPATCH;
        result->pdispVal = object;
      }
      return S_OK;
    } catch (const std::exception& error) {
      if (exception != nullptr) {
        exception->bstrSource = wideText("Recording program");
        exception->bstrDescription = wideText(error.what());
        exception->scode = static_cast<SCODE>(0x800A03EC);
      }
      return DISP_E_EXCEPTION;
    }
  }

 private:
  ~ServerObject() = default;

  host::Ref<AutomationObject> object_;
  std::shared_ptr<ServerLog> log_;
  std::atomic<long> references_ = 0;
};

/// Starts a program for each that asks.
class Factory final : public IClassFactory {
 public:
  Factory(std::shared_ptr<ExcelRecord> record, std::shared_ptr<ServerLog> log)
      : record_(std::move(record)), log_(std::move(log)) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** result) override {
    *result = nullptr;
    if (id != IID_IUnknown && id != IID_IClassFactory) return E_NOINTERFACE;
    *result = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references_); }
  ULONG STDMETHODCALLTYPE Release() override {
    const long left = --references_;
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** result) override {
    *result = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    host::Ref<AutomationObject> app = recordedBy(record_)(host::kExcelProgramId);
    if (!app) return E_FAIL;
    auto* const object = new ServerObject(std::move(app), log_);
    object->AddRef();
    const HRESULT error = object->QueryInterface(id, result);
    object->Release();
    return error;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  ~Factory() = default;

  std::shared_ptr<ExcelRecord> record_;
  std::shared_ptr<ServerLog> log_;
  std::atomic<long> references_ = 0;
};

const CString kClasses = L"Software\\Classes\\";

void setDefault(const CString& key, const CString& text) {
  const LSTATUS error = RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), nullptr, REG_SZ, text.c_str(),
                                        static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
  if (error != ERROR_SUCCESS) throw std::runtime_error("the registry takes no key " + platform::toUtf8(key));
}

}  // namespace

RegisteredServer::RegisteredServer(CString programId, const CString& localServer) : programId_(std::move(programId)) {
  // A new one each time: a system may remember a server that vanished by its class.
  CLSID classId{};
  std::array<wchar_t, 40> text{};
  if (FAILED(CoCreateGuid(&classId)) || StringFromGUID2(classId, text.data(), static_cast<int>(text.size())) == 0)
    throw std::runtime_error("the system gives no class identifier");
  classId_ = text.data();
  setDefault(kClasses + programId_ + L"\\CLSID", classId_);
  if (!localServer.empty())
    setDefault(kClasses + L"CLSID\\" + classId_ + L"\\LocalServer32", localServer + L' ' + classId_);
}

RegisteredServer::~RegisteredServer() {
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, (kClasses + programId_).c_str());
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, (kClasses + L"CLSID\\" + classId_).c_str());
}

RunningServer::RunningServer(const CString& classId, std::shared_ptr<ExcelRecord> record,
                             std::shared_ptr<ServerLog> log, Visibility visibility) {
  CLSID id{};
  auto* const factory = new Factory(std::move(record), std::move(log));
  factory->AddRef();
  HRESULT error = CLSIDFromString(classId.c_str(), &id);
  if (SUCCEEDED(error))
    error = CoRegisterClassObject(id, factory,
                                  visibility == Visibility::OtherProcesses ? CLSCTX_LOCAL_SERVER : CLSCTX_INPROC_SERVER,
                                  REGCLS_MULTIPLEUSE, &registration_);
  factory->Release();
  if (FAILED(error)) throw std::runtime_error("the system takes no server of the class " + platform::toUtf8(classId));
}

RunningServer::~RunningServer() { CoRevokeClassObject(registration_); }

}  // namespace lvx::test
