#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "civil/drawing.h"
#include "host/dialog_window.h"

/// Picks without a plan to pick in: dialogs that list a drawing's objects, and that take points by their numbers.
namespace lvx::cli {

/// An object as the list of a pick shows it.
struct PickRow {
  civil::Handle handle = 0;
  std::string text;  ///< "Alignment: Valley road (Valley road upgrade)", with the site or alignment that it belongs to
};

/// What a person may pick: alignments, profiles, groups of sample lines, surfaces, point groups and corridors, in the
/// drawing's order by their kinds. Points and single sample lines aren't among them, being too many for a list.
/// `language`: "de" names the kinds in German.
[[nodiscard]] std::vector<PickRow> pickRows(const civil::Drawing& drawing, const std::string& language);

// Numbers of their controls, beside Ok and Cancel.
inline constexpr int kIdPickPrompt = 1001;
inline constexpr int kIdPickObjects = 1002;
inline constexpr int kIdPickHint = 1003;
inline constexpr int kIdPickNumbers = 1004;

/// Asks for one object. Ok is there once one is selected.
class PickObjectDialog final : public host::DialogBehaviour {
 public:
  /// `rows` live longer.
  PickObjectDialog(host::CString prompt, const std::vector<PickRow>& rows, const std::string& language);

  /// The object, where it was closed by Ok.
  [[nodiscard]] std::optional<civil::Handle> picked() const { return picked_; }

  [[nodiscard]] const host::DialogTemplate& dialogTemplate() const override;
  void onOpening(host::DialogWindow& window) override;
  void onClick(host::DialogWindow& window, int id) override;
  void onSelectionChanged(host::DialogWindow& window, int id) override;
  void onTextChanged(host::DialogWindow& /*window*/, int /*id*/) override {}

 private:
  host::CString prompt_;
  const std::vector<PickRow>& rows_;
  bool isGerman_;
  std::optional<civil::Handle> picked_;
};

/// Asks for points by their numbers.
class PickPointsDialog final : public host::DialogBehaviour {
 public:
  /// The points that a text names ("1,5,7-9", "all"). Throws std::exception with words for the person, who may then
  /// write another one.
  using Find = std::function<std::vector<civil::Handle>(const std::string& text)>;
  PickPointsDialog(host::CString prompt, Find find, const std::string& language);

  /// The points, where it was closed by Ok.
  [[nodiscard]] const std::optional<std::vector<civil::Handle>>& picked() const { return picked_; }

  [[nodiscard]] const host::DialogTemplate& dialogTemplate() const override;
  void onOpening(host::DialogWindow& window) override;
  void onClick(host::DialogWindow& window, int id) override;
  void onSelectionChanged(host::DialogWindow& /*window*/, int /*id*/) override {}
  void onTextChanged(host::DialogWindow& window, int id) override;

 private:
  host::CString prompt_;
  Find find_;
  bool isGerman_;
  std::optional<std::vector<civil::Handle>> picked_;
};

}  // namespace lvx::cli
