#include "fake_companion/fake_companion.h"

#include <utility>

namespace lvx::test {

/// The one that answers; the functions of C linkage below reach it.
static FakeCompanion* current = nullptr;

FakeCompanion::FakeCompanion() { current = this; }
FakeCompanion::~FakeCompanion() { current = nullptr; }

host::tsiteAlignment* newSiteAlignment(const framework::CString& name, const framework::CString& handle,
                                       std::initializer_list<framework::CString> profiles) {
  auto* alignment = new host::tsiteAlignment;
  alignment->name = name;
  alignment->handle = handle;
  for (const framework::CString& profile : profiles) {
    auto* record = new host::tprofile;
    record->name = profile;
    record->handle = handle + L"-" + profile;
    alignment->children.add(record);
  }
  return alignment;
}

host::tsite* newSite(const framework::CString& name, std::initializer_list<host::tsiteAlignment*> alignments) {
  auto* site = new host::tsite;
  site->name = name;
  for (host::tsiteAlignment* alignment : alignments) site->alignments.add(alignment);
  return site;
}

}  // namespace lvx::test

using lvx::test::current;

std::int32_t pvsa_lvx_getQmtObject(lvx::host::Ref<lvx::host::QmtDocument>& document,
                                   lvx::host::Ref<lvx::host::QmtDatabase>& database) {
  if (current == nullptr) return 0;
  ++current->attachments;
  if (!current->document) return 0;
  document = current->document;
  database = current->database;
  return 1;
}

std::int32_t pvsa_lvx_releaseQmtObject() {
  if (current != nullptr) ++current->releases;
  return 0;
}

std::int32_t pvsa_lvx_getsites(lvx::host::SiteTree& sites) {
  if (current == nullptr) return 0;
  ++current->treesMade;
  if (current->fillSites) current->fillSites(sites);
  return 1;
}

std::int32_t pvsa_lvx_relsites(lvx::host::SiteTree& sites) {
  if (current != nullptr) ++current->treesFreed;
  lvx::host::releaseSites(sites);
  return 0;
}

std::int32_t pvsa_lvx_gethelemp(const lvx::host::Ref<lvx::host::QmtAlignment>& alignment, double& startStation,
                                lvx::host::RecordList<lvx::host::taxel>& elements, lvx::framework::tpt3list&) {
  if (current != nullptr && current->fillElements) current->fillElements(alignment, startStation, elements);
  return 0;
}

std::int32_t pvsa_lvx_getvelem(const lvx::framework::CString& siteName, const lvx::framework::CString& alignmentName,
                               const lvx::framework::CString& profileName, double&,
                               lvx::host::RecordList<lvx::host::tvert>& records) {
  if (current != nullptr && current->fillVerticals)
    current->fillVerticals(siteName, alignmentName, profileName, records);
  return 0;
}
