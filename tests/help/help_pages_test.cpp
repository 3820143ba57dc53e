// The pages as a reader meets them: complete in both languages, in the words of the dialogs and reports, without dead
// ends, and plain enough for a simple viewer.
#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pugixml.hpp>

#include "doubles/fake_host.h"
#include "fake_companion/fake_companion.h"
#include "gls/add_sections_dialog.h"
#include "host/dialog_controls.h"
#include "platform/utf8.h"
#include "projection/projection_dialog.h"
#include "services/message_catalogue.h"
#include "support/places.h"
#include "support/run_program.h"
#include "windowless/dialog_state.h"

namespace lvx {
namespace {

namespace fs = std::filesystem;
using services::Message;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

const fs::path kHelp = fs::path(test::inSource("/help"));
const std::vector<std::string> kLanguages{"en", "de"};
const std::vector<std::string> kPages{"index.html", "project-resources/LVX_015_001.html",
                                      "project-resources/LVX_015_002.html", "project-resources/LVX_015_003.html",
                                      "project-resources/window.html"};

/// Runs of white space, no-break spaces among them, as one blank; none at the ends.
std::string collapsed(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool noBreak = text.compare(i, 2, "\xC2\xA0") == 0;
    if (noBreak) ++i;
    const bool blank = noBreak || std::string_view(" \t\r\n").find(text[i]) != std::string_view::npos;
    if (!blank)
      result += text[i];
    else if (!result.empty() && result.back() != ' ')
      result += ' ';
  }
  while (!result.empty() && result.back() == ' ') result.pop_back();
  return result;
}

void gather(const pugi::xml_node& node, std::string& text) {
  for (const pugi::xml_node& child : node.children()) {
    if (child.type() == pugi::node_pcdata)
      text += child.value();
    else
      gather(child, text);
  }
}

std::string textOf(const pugi::xml_node& node) {
  std::string text;
  gather(node, text);
  return collapsed(text);
}

void visit(const pugi::xml_node& node, std::vector<pugi::xml_node>& elements) {
  for (const pugi::xml_node& child : node.children()) {
    if (child.type() != pugi::node_element) continue;
    elements.push_back(child);
    visit(child, elements);
  }
}

struct Page {
  fs::path file;
  std::string bytes;
  pugi::xml_document document;
  std::vector<pugi::xml_node> elements;
  std::string text;
  std::set<std::string> cells;
  std::set<std::string> codes;

  explicit Page(fs::path path) : file(std::move(path)), bytes(test::fileBytes(file)) {
    constexpr unsigned kOptions = pugi::parse_default | pugi::parse_ws_pcdata | pugi::parse_doctype;
    const pugi::xml_parse_result result =
        document.load_buffer(bytes.data(), bytes.size(), kOptions, pugi::encoding_utf8);
    EXPECT_TRUE(result) << file << ": " << result.description() << " at byte " << result.offset;
    visit(document, elements);
    text = textOf(document);
    for (const pugi::xml_node& element : elements) {
      const std::string_view name = element.name();
      if (name == "td") cells.insert(textOf(element));
      if (name == "code") codes.insert(textOf(element));
    }
  }
};

/// For what a failure shows.
std::uint32_t numberOf(Message message) { return static_cast<std::uint32_t>(message); }

/// The messages of one language, as a user sees them.
class Messages {
 public:
  explicit Messages(const std::string& language) {
    services::releaseMessages();
    host_.useMessages(language);
  }
  ~Messages() { services::releaseMessages(); }
  Messages(const Messages&) = delete;
  Messages& operator=(const Messages&) = delete;

  [[nodiscard]] std::string at(Message message) {
    const std::string text = platform::toUtf8(services::getMessage(message));
    EXPECT_NE(text, "*" + std::to_string(numberOf(message)) + "*");
    return text;
  }
  /// Without the mark of the access key.
  [[nodiscard]] std::string caption(Message message) {
    std::string text = at(message);
    std::erase(text, '&');
    return collapsed(text);
  }
  /// The lines of a longer text.
  [[nodiscard]] std::vector<std::string> lines(Message message) {
    std::vector<std::string> result;
    std::string line;
    for (const char c : at(message) + "\n") {
      if (c != '\n') {
        line += c;
        continue;
      }
      if (!collapsed(line).empty()) result.push_back(collapsed(line));
      line.clear();
    }
    return result;
  }

 private:
  test::FakeHost host_;
};

/// What a page has to hold.
struct PageContent {
  const char* page;
  Message title;
  /// Captions of controls, and heads and columns of the report: each fills a cell of a table.
  std::vector<Message> controls;
  std::vector<Message> columns;
  /// Words of the report, and entries of lists: each stands by itself as code, with a number behind it or not.
  std::vector<Message> words;
  /// Prompts, questions and complaints.
  std::vector<Message> sayings;
};

std::vector<PageContent> contents() {
  return {
      {"project-resources/LVX_015_001.html",
       Message::ProjectionTitle,
       {Message::SelectionFrame, Message::SiteLabel, Message::AlignmentLabel, Message::SampleLineGroupLabel,
        Message::SurfaceLabel, Message::OutputFrame, Message::AsciiForm, Message::ExcelForm, Message::HtmlForm,
        Message::CancelButton, Message::HelpButton},
       {Message::SampleLineName, Message::SampleLineStation, Message::ProjectionOffset, Message::ProjectionElevation},
       {Message::NoSite},
       {Message::PickAlignment, Message::NotAnAlignment, Message::PickSurfaceOrProfile, Message::NotASurface,
        Message::OverwriteFile, Message::RetryWriting, Message::OutputWithoutFolder}},
      {"project-resources/LVX_015_002.html",
       Message::PointsTitle,
       {Message::PointsSelectionFrame, Message::SiteLabel, Message::AlignmentLabel, Message::PointGroupLabel,
        Message::PointCountLabel, Message::OutputFrame, Message::AsciiForm, Message::ExcelForm, Message::HtmlForm,
        Message::CancelButton, Message::HelpButton},
       {Message::PointNumber, Message::PointEasting, Message::PointNorthing, Message::PointElevation,
        Message::PointName, Message::PointRawDescription, Message::PointFullDescription, Message::PointAlignment,
        Message::PointStation, Message::PointOffset},
       {Message::NoSite, Message::PickedPoints},
       {Message::PickAlignment, Message::NotAnAlignment, Message::SelectPointsToAdd, Message::SelectPointsToRemove,
        Message::OnePointSelected, Message::PointsSelected, Message::OverwriteFile, Message::RetryWriting,
        Message::OutputWithoutFolder}},
      {"project-resources/LVX_015_003.html",
       Message::GlsTitle,
       {Message::SelectionFrame, Message::SiteLabel, Message::AlignmentLabel, Message::ProfileLabel,
        Message::CorridorLabel, Message::SampleLineGroupLabel, Message::OutputFrame, Message::AsciiForm,
        Message::ExcelForm, Message::HtmlForm, Message::CancelButton, Message::HelpButton, Message::OkButton},
       {Message::GlsName,
        Message::GlsStation,
        Message::GlsDistance,
        Message::GlsNotes,
        Message::GlsCurveOrdinates,
        Message::GlsCurveX,
        Message::GlsCurveY,
        Message::GlsElevations,
        Message::GlsTangentElevation,
        Message::GlsProfileElevation,
        Message::GlsCrossFalls,
        Message::GlsWidths,
        Message::GlsHeights,
        Message::GlsEdgeElevations,
        Message::GlsElement,
        Message::GlsRadius,
        Message::GlsParameter,
        Message::GlsElementLength,
        Message::GlsAngle,
        Message::GlsAngleUnit},
       {Message::NoSite, Message::Rise, Message::Fall, Message::ClothoidStart, Message::ClothoidEnd, Message::ArcStart,
        Message::ArcEnd, Message::VerticalCurveStart, Message::VerticalIntersection, Message::VerticalCurveEnd,
        Message::GradeChange, Message::TangentLength, Message::CrestRadius, Message::SagRadius,
        Message::VerticalCurveTangent, Message::NoCorridor},
       {Message::CorridorsOutOfReach, Message::PickAlignment, Message::NotAnAlignment, Message::PickSurfaceOrProfile,
        Message::OverwriteFile, Message::RetryWriting, Message::OutputWithoutFolder, Message::GlsLeft,
        Message::GlsRight, Message::LineElement, Message::ArcElement, Message::ClothoidElement, Message::NotAProfile,
        Message::AddSectionsQuestion, Message::AddSectionsTitle, Message::AddSectionsAnswers}},
  };
}

TEST(HelpPages, AreThereInBothLanguagesAndNoOthers) {
  for (const std::string& language : kLanguages) {
    std::set<std::string> found;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(kHelp / language))
      if (entry.is_regular_file()) found.insert(entry.path().lexically_relative(kHelp / language).generic_string());
    std::set<std::string> expected(kPages.begin(), kPages.end());
    expected.insert("style.css");
    EXPECT_EQ(found, expected) << language;
  }
}

TEST(HelpPages, ArePlainPagesOfTheirLanguage) {
  const std::set<std::string> plain{"html", "head", "meta",  "title", "link", "body", "h1",  "h2",   "h3", "p", "ul",
                                    "li",   "pre",  "table", "tr",    "th",   "td",   "img", "code", "b",  "a", "br"};
  for (const std::string& language : kLanguages) {
    for (const std::string& name : kPages) {
      const Page page(kHelp / language / name);
      SCOPED_TRACE(page.file);
      EXPECT_TRUE(page.bytes.starts_with("<!DOCTYPE html>\n<html lang=\"" + language + "\">"));
      EXPECT_STREQ(page.document.child("html").child("head").child("meta").attribute("charset").value(), "utf-8");
      EXPECT_FALSE(textOf(page.document.child("html").child("head").child("title")).empty());
      std::size_t headings = 0;
      for (const pugi::xml_node& element : page.elements) {
        EXPECT_THAT(plain, Contains(element.name()));
        headings += element.name() == std::string("h1") ? 1 : 0;
        for (const pugi::xml_attribute& attribute : element.attributes()) {
          EXPECT_THAT(attribute.name(), Not(testing::StartsWith("on")));
          EXPECT_THAT(attribute.value(), Not(HasSubstr("//")));
        }
      }
      EXPECT_EQ(headings, 1U);
    }
    EXPECT_THAT(test::fileBytes(kHelp / language / "style.css"),
                testing::AllOf(Not(HasSubstr("url(")), Not(HasSubstr("@import"))));
  }
}

TEST(HelpPages, HaveNoDeadLinks) {
  for (const std::string& language : kLanguages) {
    for (const std::string& name : kPages) {
      const Page page(kHelp / language / name);
      SCOPED_TRACE(page.file);
      std::set<std::string> anchors;
      for (const pugi::xml_node& element : page.elements) {
        const pugi::xml_attribute id = element.attribute("id");
        const bool isNew = !id || anchors.insert(id.value()).second;
        EXPECT_TRUE(isNew) << id.value();
      }
      std::size_t links = 0;
      for (const pugi::xml_node& element : page.elements) {
        for (const char* kind : {"href", "src"}) {
          if (!element.attribute(kind)) continue;
          ++links;
          const std::string target = element.attribute(kind).value();
          if (target.starts_with("#")) {
            EXPECT_THAT(anchors, Contains(target.substr(1)));
            continue;
          }
          const fs::path file = (page.file.parent_path() / target).lexically_normal();
          EXPECT_TRUE(fs::is_regular_file(file)) << target;
          EXPECT_TRUE(file.string().starts_with(kHelp.string())) << target;
        }
      }
      EXPECT_GE(links, 2U) << "the style sheet and a way to another page";
    }
  }
}

TEST(HelpPages, SayWhatDialogsAndReportsSay) {
  for (const std::string& language : kLanguages) {
    Messages messages(language);
    for (const PageContent& content : contents()) {
      const Page page(kHelp / language / content.page);
      SCOPED_TRACE(page.file);
      const pugi::xml_node body = page.document.child("html").child("body");
      EXPECT_EQ(textOf(body.child("h1")), messages.caption(content.title));
      EXPECT_THAT(page.cells, Contains("OK"));
      for (const std::vector<Message>* captions : {&content.controls, &content.columns})
        for (const Message message : *captions)
          EXPECT_THAT(page.cells, Contains(messages.caption(message))) << numberOf(message);
      for (const Message message : content.words) {
        const std::string word = messages.caption(message);
        const bool found = page.codes.contains(word) || page.codes.contains(word + "1");
        EXPECT_TRUE(found) << numberOf(message) << ": " << word;
      }
      for (const Message message : content.sayings)
        for (const std::string& line : messages.lines(message))
          EXPECT_THAT(page.text, HasSubstr(line)) << numberOf(message);
    }
  }
}

/// The page holds the caption of every control: in a cell of its own or, of a question, line by line in its text.
void expectCaptions(host::DialogBehaviour& dialog, const Page& page) {
  using host::ControlKind;
  const windowless::DialogState state(dialog);
  std::size_t captions = 0;
  for (const host::ControlTemplate& control : dialog.dialogTemplate().controls) {
    switch (control.kind) {
      case ControlKind::PushButton:
      case ControlKind::DefaultButton:
      case ControlKind::GroupBox:
      case ControlKind::Label:
      case ControlKind::CheckBox:
        break;
      default:
        continue;
    }
    std::istringstream lines(platform::toUtf8(state.text(control.id)));
    for (std::string line; std::getline(lines, line);) {
      std::erase(line, '&');
      if (collapsed(line).empty()) continue;
      ++captions;
      if (control.id == host::kIdQuestion)
        EXPECT_THAT(page.text, HasSubstr(collapsed(line)));
      else
        EXPECT_THAT(page.cells, Contains(collapsed(line))) << control.id;
    }
  }
  EXPECT_GT(captions, 3U);
}

TEST(HelpPages, NameEveryControlOfTheirDialogs) {
  for (const std::string& language : kLanguages) {
    SCOPED_TRACE(language);
    services::releaseMessages();
    test::FakeHost host;
    host.useMessages(language);
    test::FakeCompanion companion;
    projection::CMyDialog1 projection(host);
    expectCaptions(projection, Page(kHelp / language / "project-resources/LVX_015_001.html"));
    gls::CMyDialog4 question(host);
    expectCaptions(question, Page(kHelp / language / "project-resources/LVX_015_003.html"));
  }
}

TEST(HelpPages, TellTheSameInBothLanguages) {
  for (const std::string& name : kPages) {
    std::vector<std::vector<std::string>> outlines;
    for (const std::string& language : kLanguages) {
      const Page page(kHelp / language / name);
      std::vector<std::string> outline;
      for (const pugi::xml_node& element : page.elements) {
        const std::string tag = element.name();
        if (tag != "b" && tag != "code") outline.push_back(tag + " " + element.attribute("src").value());
      }
      outlines.push_back(std::move(outline));
    }
    EXPECT_EQ(outlines[0], outlines[1]) << name;
  }
  EXPECT_EQ(test::fileBytes(kHelp / "en" / "style.css"), test::fileBytes(kHelp / "de" / "style.css"));
}

TEST(HelpPages, ShowTheProjectionReportAsItIsWritten) {
  test::TemporaryFolder folder;
  for (const std::string& language : kLanguages) {
    test::RunRequest request;
    request.program = fs::path(test::inBuild("/bin/lvxhost"));
    request.arguments = {"--lang",      language,
                         "--forms",     "txt",
                         "projection",  test::inSource("/examples/valley-road.xml"),
                         "--alignment", "Valley road",
                         "--group",     "Cross sections 20 m",
                         "--surface",   "Existing ground",
                         "--out",       (folder / language).string()};
    const test::RunResult run = test::runProgram(request);
    ASSERT_EQ(run.exitCode, 0) << run.errors;
    std::string report = test::fileBytes(folder / (language + ".txt"));
    std::erase(report, '\r');

    const Page page(kHelp / language / "project-resources/LVX_015_001.html");
    const auto example = std::find_if(page.elements.begin(), page.elements.end(), [](const pugi::xml_node& element) {
      return element.name() == std::string("pre");
    });
    ASSERT_NE(example, page.elements.end());
    std::istringstream lines(example->text().get());
    std::size_t rows = 0;
    std::size_t behind = 0;
    for (std::string line; std::getline(lines, line);) {
      const bool isOwn = line.starts_with("* ") && line.find(" : ") != std::string::npos;  // path, date, time
      if (line.empty() || isOwn || line.find("...") != std::string::npos) continue;
      const std::size_t at = report.find(line + "\n", behind);
      EXPECT_NE(at, std::string::npos) << line;
      if (at == std::string::npos) break;
      behind = at + line.size();
      ++rows;
    }
    EXPECT_GT(rows, 15U);
  }
}

TEST(HelpPages, ShowEveryPictureOfTheDialogs) {
  std::set<std::string> drawn;
  for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(test::inSource("/resources"))))
    if (entry.path().extension() == ".xpm") drawn.insert(entry.path().stem().string());
  std::set<std::string> shown;
  for (const std::string& name : kPages)
    for (const pugi::xml_node& element : Page(kHelp / "en" / name).elements)
      if (element.attribute("src")) shown.insert(fs::path(element.attribute("src").value()).stem().string());
  EXPECT_EQ(shown, drawn);
  for (const std::string& name : drawn)
    EXPECT_TRUE(test::fileBytes(kHelp / "pictures" / (name + ".png")).starts_with("\x89PNG\r\n")) << name;
}

}  // namespace
}  // namespace lvx
