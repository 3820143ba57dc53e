#include "host/site_tree.h"

#include <array>

#include "host/collections.h"
#include "host/host.h"
#include "host/run_time.h"

namespace lvx::host {

namespace {

constexpr std::size_t kHandleCharacters = 32;
constexpr std::int32_t kForReading = 0;

/// Frees an alignment's children, then the record.
template <class Child>
void destroyAlignment(talignment2Of<Child>* alignment) noexcept {
  framework::destroyAll(alignment->children);
  delete alignment;
}

/// First the alignments with what hangs below them, then the record with its texts.
void destroySite(tsite* site) noexcept {
  for (tsiteAlignment* alignment : site->alignments) destroyAlignment(alignment);
  site->alignments.removeAll();
  delete site;
}

CString textOf(const VnDbHandle& handle) {
  std::array<wchar_t, kHandleCharacters> buffer{};
  handle.getIntoAsciiBuffer(buffer.data(), buffer.size());
  return buffer.data();
}

/// Builds the records of an overall list. Whatever an operation left empty stays empty in its record.
class AlignmentLoader {
 public:
  AlignmentLoader(RunTime& runTime, AlignmentList& list) : runTime_(runTime), list_(list) {}

  void append(const Ref<QmtAlignmentList>& alignments) {
    const std::int32_t count = alignments ? alignments->count() : 0;
    for (std::int32_t i = 0; i < count; ++i) {
      talignment2* record = list_.append(std::make_unique<talignment2>());
      const auto alignment = alignments->item(i);
      fill(*record, alignment);
      appendGroups(*record, alignment ? alignment->sampleLineGroups() : nullptr);
    }
  }

 private:
  void appendGroups(talignment2& alignment, const Ref<QmtSampleLineGroupList>& groups) {
    const std::int32_t count = groups ? groups->count() : 0;
    for (std::int32_t i = 0; i < count; ++i) {
      tslgroup* record = alignment.children.append(std::make_unique<tslgroup>());
      fill(*record, groups->item(i));
    }
  }

  template <class Record, class Object>
  void fill(Record& record, const Ref<Object>& object) {
    VnDbObjectId id;
    if (object) {
      record.name = object->name();
      record.description = object->description();
      id = object->objectId();
    }
    readHandleText(id);
    record.handle = lastHandleText_;
  }

  /// Objects are told apart by these texts. One buffer serves the whole run: an object that can't be opened gets the
  /// text of the object before it, so a pick of that one finds the first of the two, as users of such drawings know it.
  void readHandleText(VnDbObjectId id) {
    VnDbObject* object = nullptr;
    if (runTime_.vndbOpenObject(object, id, kForReading, false) != kSuccess || object == nullptr) return;
    VnDbHandle handle;
    object->getVnDbHandle(handle);
    lastHandleText_ = textOf(handle);
    object->close();
  }

  RunTime& runTime_;
  AlignmentList& list_;
  CString lastHandleText_;
};

}  // namespace

void loadAllAlignments(Host& host, const Ref<QmtDocument>& document, const Ref<QmtDatabase>& database,
                       AlignmentList& list) {
  releaseAllAlignments(list);
  AlignmentLoader loader(host.runTime(), list);
  if (document) loader.append(document->sitelessAlignments());
  const auto sites = database ? database->sites() : nullptr;
  const std::int32_t count = sites ? sites->count() : 0;
  for (std::int32_t i = 0; i < count; ++i)
    if (const auto site = sites->item(i)) loader.append(site->alignments());
}

void releaseAllAlignments(AlignmentList& list) noexcept {
  for (talignment2* alignment : list) destroyAlignment(alignment);
  list.removeAll();
}

void releaseSites(SiteTree& sites) noexcept {
  for (tsite* site : sites) destroySite(site);
  sites.removeAll();
}

void removeSitesWithoutAlignments(SiteTree& sites) {
  framework::ArrayIndex kept = 0;
  for (framework::ArrayIndex i = 0; i < sites.size(); ++i) {
    tsite* site = sites[i];
    if (site->alignments.isEmpty()) {
      destroySite(site);
    } else {
      sites.setAt(kept++, site);
    }
  }
  sites.setSize(kept);
}

void namePickedAlignment(const SiteTree& sites, const AlignmentList& alignments, const CString& handle,
                         CString& siteText, CString& alignmentText) {
  for (const tsite* site : sites)
    for (framework::ArrayIndex position = 0; position < site->alignments.size(); ++position)
      if (site->alignments[position]->handle == handle) {
        siteText = site->name;
        alignmentText = alignments[position]->name;
        return;
      }
}

bool meansNoSite(const CString& siteName) { return siteName.empty() || siteName.front() == L'*'; }

Ref<QmtAlignment> alignmentNamed(const Ref<QmtDocument>& document, const Ref<QmtDatabase>& database,
                                 const CString& siteName, const CString& alignmentName) {
  if (meansNoSite(siteName)) return document ? firstNamed(document->sitelessAlignments(), alignmentName) : nullptr;
  const auto site = database ? firstNamed(database->sites(), siteName) : nullptr;
  return site ? firstNamed(site->alignments(), alignmentName) : nullptr;
}

CString handleText(Host& host, VnDbObjectId id) {
  const VnDbHandle handle = host.runTime().handle(id);
  return handle.value() == 0 ? CString() : textOf(handle);
}

}  // namespace lvx::host
