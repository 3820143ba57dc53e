#pragma once

#include <functional>

#include "host/companion.h"

namespace lvx::test {

/// What stands behind the companion library's six functions in a test. One at a time; the functions answer as a library
/// that has nothing while there is none.
struct FakeCompanion {
  FakeCompanion();
  FakeCompanion(const FakeCompanion&) = delete;
  FakeCompanion& operator=(const FakeCompanion&) = delete;
  ~FakeCompanion();

  /// Handed out by pvsa_lvx_getQmtObject; without a document that fails.
  host::Ref<host::QmtDocument> document;
  host::Ref<host::QmtDatabase> database;
  /// Fills the tree at pvsa_lvx_getsites.
  std::function<void(host::SiteTree&)> fillSites;
  std::function<void(const host::Ref<host::QmtAlignment>&, double&, host::RecordList<host::taxel>&)> fillElements;
  std::function<void(const framework::CString&, const framework::CString&, const framework::CString&,
                     host::RecordList<host::tvert>&)>
      fillVerticals;

  /// How often each was called.
  int attachments = 0;
  int releases = 0;
  int treesMade = 0;
  int treesFreed = 0;
};

/// Records for a tree: a site with alignments, each with a handle text and profile names.
[[nodiscard]] host::tsiteAlignment* newSiteAlignment(const framework::CString& name, const framework::CString& handle,
                                                     std::initializer_list<framework::CString> profiles = {});
[[nodiscard]] host::tsite* newSite(const framework::CString& name,
                                   std::initializer_list<host::tsiteAlignment*> alignments);

}  // namespace lvx::test
