#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "host/model.h"
#include "platform/utf8.h"
#include "runtime/open_drawing.h"

/// What the model objects of both sides, civil and roadway, are made from.
namespace lvx::runtime::detail {

/// What all model objects share: the drawing they came from and their place in its count.
template <class Interface, ModelKind kind>
class ModelObject : public Interface {
 public:
  explicit ModelObject(OpenDrawingRef drawing) : drawing_(std::move(drawing)) { drawing_->liveObjects().add(kind); }
  ~ModelObject() override { drawing_->liveObjects().remove(kind); }

 protected:
  [[nodiscard]] const OpenDrawingRef& drawing() const { return drawing_; }

 private:
  OpenDrawingRef drawing_;
};

/// A model object over one record of the drawing, of a const type where it only reads.
template <class Interface, ModelKind kind, class Record>
class RecordObject : public ModelObject<Interface, kind> {
 public:
  RecordObject(const OpenDrawingRef& drawing, Record& record)
      : ModelObject<Interface, kind>(drawing), record_(record) {}

 protected:
  [[nodiscard]] Record& record() const { return record_; }

 private:
  Record& record_;
};

/// A collection's count, which has 32 bits.
template <class Records>
std::int32_t countOf(const Records& records) {
  constexpr std::size_t kMost = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::min(records.size(), kMost));
}

template <class T>
T& dereference(T& value) {
  return value;
}
template <class T>
T& dereference(const std::unique_ptr<T>& pointer) {
  return *pointer;
}

/// A collection over a list of records; `Wrapper` is the model object of one of them.
template <class Base, ModelKind kind, class Records, class Wrapper>
class ListObject : public ModelObject<Base, kind> {
 public:
  ListObject(const OpenDrawingRef& drawing, Records& records) : ModelObject<Base, kind>(drawing), records_(records) {}

  using Base::item;
  [[nodiscard]] std::int32_t count() override { return countOf(records_); }
  [[nodiscard]] auto item(std::int32_t index) -> decltype(std::declval<Base&>().item(std::int32_t{})) override {
    if (index < 0 || index >= count()) return nullptr;
    return std::make_shared<Wrapper>(this->drawing(), dereference(records_[static_cast<std::size_t>(index)]));
  }

 protected:
  [[nodiscard]] Records& records() const { return records_; }

 private:
  Records& records_;
};

/// A collection that finds the first record of a name too.
template <class Base, ModelKind kind, class Records, class Wrapper>
class NamedListObject : public ListObject<Base, kind, Records, Wrapper> {
 public:
  using ListObject<Base, kind, Records, Wrapper>::ListObject;
  using ListObject<Base, kind, Records, Wrapper>::item;
  [[nodiscard]] auto item(const host::CString& name) -> decltype(std::declval<Base&>().item(name)) override {
    const std::string wanted = platform::toUtf8(name);
    for (const auto& record : this->records())
      if (record.name == wanted) return std::make_shared<Wrapper>(this->drawing(), record);
    return nullptr;
  }
};

}  // namespace lvx::runtime::detail
