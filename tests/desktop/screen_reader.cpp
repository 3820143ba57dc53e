#include "screen_reader.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusReply>
#include <stdexcept>

namespace lvx::test {

namespace {

constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
// Numbers of states, as the service counts them.
constexpr unsigned kActive = 1;
constexpr unsigned kFocused = 12;
constexpr unsigned kShowing = 25;

bool has(quint64 states, unsigned state) { return (states >> state & 1U) != 0; }

}  // namespace

ScreenReader::ScreenReader() {
  bus_.start(QStringLiteral("dbus-daemon"),
             {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address")});
  if (!bus_.waitForStarted() || !bus_.waitForReadyRead())
    throw std::runtime_error("no session bus: " + bus_.errorString().toStdString());
  const QByteArray address = bus_.readLine().trimmed();
  qputenv("DBUS_SESSION_BUS_ADDRESS", address);
  QDBusConnection session = QDBusConnection::connectToBus(QString::fromLatin1(address), QStringLiteral("session"));
  const QDBusReply<QString> reader =
      session.call(QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                                  QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress")));
  QDBusConnection::disconnectFromBus(QStringLiteral("session"));
  if (!reader.isValid())
    throw std::runtime_error("no service for screen readers (at-spi2-core): " + reader.error().message().toStdString());
  reader_ = QDBusConnection::connectToBus(reader.value(), QStringLiteral("reader"));
}

ScreenReader::~ScreenReader() {
  reader_.reset();
  QDBusConnection::disconnectFromBus(QStringLiteral("reader"));
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
  bus_.terminate();
  bus_.waitForFinished();
}

QVariant ScreenReader::property(const Node& node, const QString& interface, const QString& name) const {
  QDBusMessage call = QDBusMessage::createMethodCall(
      node.service, node.path.path(), QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
  call << interface << name;
  const QDBusReply<QDBusVariant> reply = reader_->call(call);
  return reply.isValid() ? reply.value().variant() : QVariant();
}

std::vector<ScreenReader::Node> ScreenReader::childrenOf(const Node& node) const {
  std::vector<Node> children;
  const QDBusMessage reply = reader_->call(QDBusMessage::createMethodCall(
      node.service, node.path.path(), QLatin1String(kAccessible), QStringLiteral("GetChildren")));
  if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) return children;
  const auto list = reply.arguments().front().value<QDBusArgument>();
  list.beginArray();
  while (!list.atEnd()) {
    Node child;
    list.beginStructure();
    list >> child.service >> child.path;
    list.endStructure();
    children.push_back(child);
  }
  list.endArray();
  return children;
}

quint64 ScreenReader::statesOf(const Node& node) const {
  const QDBusReply<QList<uint>> reply = reader_->call(QDBusMessage::createMethodCall(
      node.service, node.path.path(), QLatin1String(kAccessible), QStringLiteral("GetState")));
  if (!reply.isValid() || reply.value().size() < 2) return 0;
  return quint64{reply.value()[1]} << 32U | reply.value()[0];
}

QString ScreenReader::roleOf(const Node& node) const {
  const QDBusReply<QString> role = reader_->call(QDBusMessage::createMethodCall(
      node.service, node.path.path(), QLatin1String(kAccessible), QStringLiteral("GetRoleName")));
  return role.value();
}

QString ScreenReader::labelOf(const Node& node) const {
  constexpr uint kLabelledBy = 2;
  const QDBusMessage reply = reader_->call(QDBusMessage::createMethodCall(
      node.service, node.path.path(), QLatin1String(kAccessible), QStringLiteral("GetRelationSet")));
  if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) return {};
  QString label;
  const auto relations = reply.arguments().front().value<QDBusArgument>();
  relations.beginArray();
  while (!relations.atEnd()) {
    uint kind = 0;
    relations.beginStructure();
    relations >> kind;
    relations.beginArray();
    while (!relations.atEnd()) {
      Node other;
      relations.beginStructure();
      relations >> other.service >> other.path;
      relations.endStructure();
      if (kind == kLabelledBy) label = property(other, QLatin1String(kAccessible), QStringLiteral("Name")).toString();
    }
    relations.endArray();
    relations.endStructure();
  }
  relations.endArray();
  return label;
}

Spoken ScreenReader::spokenOf(const Node& node) const {
  Spoken spoken;
  spoken.role = roleOf(node);
  spoken.name = property(node, QLatin1String(kAccessible), QStringLiteral("Name")).toString();
  QDBusMessage text = QDBusMessage::createMethodCall(node.service, node.path.path(),
                                                     QStringLiteral("org.a11y.atspi.Text"), QStringLiteral("GetText"));
  text << 0 << -1;
  const QDBusReply<QString> value = reader_->call(text);
  if (value.isValid()) spoken.value = value.value();
  // A list's name is the row that it shows; what it is for stands in its label.
  if (spoken.role == QLatin1String("combo box")) spoken.value = spoken.name;
  if (const QString label = labelOf(node); !label.isEmpty()) spoken.name = label;
  return spoken;
}

std::vector<ScreenReader::Node> ScreenReader::windowsOf(const QString& program) const {
  const Node root{QStringLiteral("org.a11y.atspi.Registry"),
                  QDBusObjectPath(QStringLiteral("/org/a11y/atspi/accessible/root"))};
  for (const Node& application : childrenOf(root))
    if (property(application, QLatin1String(kAccessible), QStringLiteral("Name")).toString() == program)
      return childrenOf(application);
  return {};
}

bool ScreenReader::eachShowing(const Node& node, const std::function<bool(const Node&, quint64)>& use) const {
  const quint64 states = statesOf(node);
  if (!has(states, kShowing)) return false;
  if (use(node, states)) return true;
  const QString role = roleOf(node);
  if (role == QLatin1String("tree") || role == QLatin1String("table") || role == QLatin1String("list")) return false;
  for (const Node& child : childrenOf(node))
    if (eachShowing(child, use)) return true;
  return false;
}

std::optional<Spoken> ScreenReader::focused(const QString& program) {
  std::optional<Spoken> found;
  for (const Node& window : windowsOf(program)) {
    if (!has(statesOf(window), kActive)) continue;
    eachShowing(window, [&](const Node& node, quint64 states) {
      if (!has(states, kFocused)) return false;
      Spoken spoken = spokenOf(node);
      // The tab that is in front says so of itself, wherever the keyboard is.
      if (spoken.role == QLatin1String("page tab")) return false;
      // A part that passes the keyboard on to one of its own counts as focused too: the innermost is meant.
      found = std::move(spoken);
      return false;
    });
    if (found) break;
  }
  return found;
}

std::vector<Spoken> ScreenReader::showing(const QString& program, const QString& role) {
  std::vector<Spoken> found;
  for (const Node& window : windowsOf(program))
    eachShowing(window, [&](const Node& node, quint64) {
      if (Spoken spoken = spokenOf(node); spoken.role == role) found.push_back(std::move(spoken));
      return false;
    });
  return found;
}

}  // namespace lvx::test
