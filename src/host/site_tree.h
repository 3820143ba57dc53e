#pragma once

#include <cstdint>

#include "framework/arrays.h"
#include "framework/text.h"
#include "host/model.h"

/// The two lists that describe a drawing's sites and alignments to the dialogs: the site tree, which the companion
/// library fills with profiles, and the overall alignment list, filled here with sample line groups.
namespace lvx::host {

template <class T>
using RecordList = framework::CTypedPtrArray<framework::CPtrArray, T*>;

/// One sample line group of an alignment.
struct tslgroup {
  std::uint32_t reserved = 0;
  CString name;
  CString description;
  CString handle;
};

/// One profile of an alignment.
struct tprofile {
  std::uint32_t reserved = 0;
  CString name;
  CString description;
  CString handle;
};

/// One alignment. `Child` tells which list it stands in: tprofile in the site tree, tslgroup in the overall list. Owns
/// its children by convention: whoever destroys the record destroys them first.
template <class Child>
struct talignment2Of {
  std::uint64_t reserved = 0;
  CString name;
  CString description;
  CString handle;
  RecordList<Child> children;
};
using talignment2 = talignment2Of<tslgroup>;
using tsiteAlignment = talignment2Of<tprofile>;

/// One site; an empty name stands for the alignments outside any site.
struct tsite {
  std::uint64_t reserved = 0;
  CString name;
  CString description;
  RecordList<tsiteAlignment> alignments;
};

using SiteTree = RecordList<tsite>;
using AlignmentList = RecordList<talignment2>;

class Host;

/// Fills `list` with every alignment of the drawing: those outside any site first, then site by site, in the model's
/// order, neither sorted nor de-duplicated. What the list held before is freed. Opens each alignment and group through
/// the host's run time for its handle text; where that fails, the text of the object before it stands in.
void loadAllAlignments(Host& host, const Ref<QmtDocument>& document, const Ref<QmtDatabase>& database,
                       AlignmentList& list);

/// Frees every record of `list` with its groups and empties it.
void releaseAllAlignments(AlignmentList& list) noexcept;

/// Frees a whole site tree with its records.
void releaseSites(SiteTree& sites) noexcept;

/// Removes every site without alignments, so that no empty row is ever shown.
void removeSitesWithoutAlignments(SiteTree& sites);

/// Names the alignment with this handle text for a dialog: its site's name, and the name that stands in the overall list
/// at the position that the alignment has within its site. The two lists run in different orders, so for an alignment of
/// a later site that may be another name; the dialog then shows that alignment or the site's first. Users know the pick
/// that way. An alignment that no site holds changes neither text; a position beyond the overall list raises
/// framework::InvalidArgumentException.
void namePickedAlignment(const SiteTree& sites, const AlignmentList& alignments, const CString& handle,
                         CString& siteText, CString& alignmentText);

/// True where a site's name means the alignments outside any site: it is empty, or begins with the star of the dialogs'
/// row for them.
[[nodiscard]] bool meansNoSite(const CString& siteName);

/// The first alignment of exactly that name in the first site of exactly that name, or among those outside any site;
/// empty where there is none.
[[nodiscard]] Ref<QmtAlignment> alignmentNamed(const Ref<QmtDocument>& document, const Ref<QmtDatabase>& database,
                                               const CString& siteName, const CString& alignmentName);

/// Handle text of a drawing object, without opening it; empty for none.
[[nodiscard]] CString handleText(Host& host, VnDbObjectId id);

}  // namespace lvx::host
