#pragma once

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

namespace lvx::test {

/// What a program tells of one of its parts.
struct Spoken {
  QString role;   ///< "combo box"
  QString name;   ///< that of its label, where it has one
  QString value;  ///< of an edit or a list: what stands in it

  [[nodiscard]] std::string text() const {
    return (role + QStringLiteral(" '") + name + QStringLiteral("' '") + value + QStringLiteral("'")).toStdString();
  }
};

/// What a screen reader hears of the programs of this display: by the service for assistive technology (AT-SPI) of a
/// session bus of its own. Programs hear of the bus by DBUS_SESSION_BUS_ADDRESS, which is set for this process while the
/// reader lives.
class ScreenReader {
 public:
  /// Throws std::runtime_error where there is no bus or no such service.
  ScreenReader();
  ScreenReader(const ScreenReader&) = delete;
  ScreenReader& operator=(const ScreenReader&) = delete;
  ~ScreenReader();

  /// The part that has the keyboard, in the windows of a program; empty where none has.
  [[nodiscard]] std::optional<Spoken> focused(const QString& program);
  /// All parts of that role which show.
  [[nodiscard]] std::vector<Spoken> showing(const QString& program, const QString& role);

 private:
  struct Node {
    QString service;
    QDBusObjectPath path;
  };
  [[nodiscard]] QString roleOf(const Node& node) const;
  [[nodiscard]] QString labelOf(const Node& node) const;
  [[nodiscard]] std::vector<Node> childrenOf(const Node& node) const;
  [[nodiscard]] quint64 statesOf(const Node& node) const;
  [[nodiscard]] Spoken spokenOf(const Node& node) const;
  [[nodiscard]] QVariant property(const Node& node, const QString& interface, const QString& name) const;
  [[nodiscard]] std::vector<Node> windowsOf(const QString& program) const;
  /// Calls `use` for what shows below a node, until it says so. Rows of lists and trees are left out.
  bool eachShowing(const Node& node, const std::function<bool(const Node&, quint64 states)>& use) const;

  QProcess bus_;
  std::optional<QDBusConnection> reader_;
};

}  // namespace lvx::test
