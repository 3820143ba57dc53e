#pragma once

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "civil/drawing.h"

namespace lvx::landxml::testing {

/// Tells the first difference between two drawings; empty where they hold the same objects, texts and handles, and
/// numbers that differ by at most 1e-9.
class DrawingComparison {
 public:
  static std::string difference(const civil::Drawing& a, const civil::Drawing& b) {
    DrawingComparison c;
    c.compare("unit", a.linearUnit, b.linearUnit);
    c.site("siteless", a.siteless, b.siteless);
    c.lists("site", a.sites, b.sites, [&](const auto& w, const auto& x, const auto& y) { c.site(w, x, y); });
    c.lists("surface", a.surfaces, b.surfaces, [&](const auto& w, const auto& x, const auto& y) {
      c.object(w, x, y);
      c.compare(w + " points", x.surface.counts().points, y.surface.counts().points);
      c.compare(w + " triangles", x.surface.counts().triangles, y.surface.counts().triangles);
    });
    c.lists("point", a.points, b.points, [&](const auto& w, const auto& x, const auto& y) {
      c.compare(w + " handle", x.handle, y.handle);
      c.compare(w + " number", x.number, y.number);
      c.compare(w + " name", x.texts.name(), y.texts.name());
      c.compare(w + " description", x.texts.description(), y.texts.description());
      c.compare(w + " full description", x.texts.fullDescription(), y.texts.fullDescription());
      c.near(w + " x", x.position.x, y.position.x);
      c.near(w + " y", x.position.y, y.position.y);
      c.near(w + " z", x.position.z, y.position.z);
      c.compare(w + " hasElevation", x.hasElevation, y.hasElevation);
    });
    c.lists("point group", a.pointGroups, b.pointGroups, [&](const auto& w, const auto& x, const auto& y) {
      c.object(w, x, y);
      c.compare(w + " numbers", x.numbers == y.numbers, true);
    });
    c.lists("corridor", a.corridors, b.corridors,
            [&](const auto& w, const auto& x, const auto& y) { c.corridor(w, x, y); });
    return c.text_;
  }

 private:
  void fail(const std::string& what) {
    if (text_.empty()) text_ = what;
  }
  template <class T>
  void compare(const std::string& where, const T& a, const T& b) {
    if (!(a == b)) fail(where + shown(a, b));
  }
  static std::string shown(const std::string& a, const std::string& b) { return ": '" + a + "' and '" + b + "'"; }
  template <class T>
  static std::string shown(const T& a, const T& b) {
    if constexpr (std::is_arithmetic_v<T>) return ": " + std::to_string(a) + " and " + std::to_string(b);
    return {};
  }
  void near(const std::string& where, double a, double b) {
    if (!(std::abs(a - b) <= 1e-9)) fail(where + shown(a, b));
  }
  template <class List, class Use>
  void lists(const std::string& where, const List& a, const List& b, Use use) {
    compare(where + " count", a.size(), b.size());
    auto y = b.begin();
    for (auto x = a.begin(); x != a.end() && y != b.end(); ++x, ++y) {
      use(where + " " + std::to_string(x - a.begin()), *x, *y);
    }
  }
  template <class Object>
  void object(const std::string& where, const Object& a, const Object& b) {
    compare(where + " handle", a.handle, b.handle);
    compare(where + " name", a.name, b.name);
    compare(where + " description", a.description, b.description);
  }
  void site(const std::string& where, const civil::Site& a, const civil::Site& b) {
    object(where, a, b);
    lists(where + ", alignment", a.alignments, b.alignments, [&](const auto& w, const auto& xp, const auto& yp) {
      const auto& x = *xp;
      const auto& y = *yp;
      object(w, x, y);
      near(w + " start", x.geometry.startStation(), y.geometry.startStation());
      near(w + " length", x.geometry.length(), y.geometry.length());
      compare(w + " equations", x.stationEquations.orNone().size(), y.stationEquations.orNone().size());
      lists(w + ", profile", x.profiles, y.profiles, [&](const auto& v, const auto& p, const auto& q) {
        object(v, p, q);
        compare(v + " points", p.profile.points().size(), q.profile.points().size());
      });
      lists(w + ", group", x.sampleLineGroups, y.sampleLineGroups, [&](const auto& v, const auto& p, const auto& q) {
        object(v, p, q);
        lists(v + ", line", p.lines, q.lines, [&](const auto& u, const auto& l, const auto& m) {
          compare(u + " handle", l.handle, m.handle);
          compare(u + " name", l.name, m.name);
          near(u + " station", l.station, m.station);
          lists(u + ", vertex", l.vertices, m.vertices, [&](const auto& t, const auto& s, const auto& r) {
            near(t + " x", s.x, r.x);
            near(t + " y", s.y, r.y);
          });
        });
      });
    });
  }
  void corridor(const std::string& where, const civil::Corridor& a, const civil::Corridor& b) {
    object(where, a, b);
    lists(where + ", baseline", a.baselines, b.baselines, [&](const auto& w, const auto& x, const auto& y) {
      compare(w + " name", x.name, y.name);
      compare(w + " alignment", x.alignment->handle, y.alignment->handle);
      compare(w + " profile", x.profile ? x.profile->handle : 0, y.profile ? y.profile->handle : 0);
      lists(w + ", region", x.regions, y.regions, [&](const auto& v, const auto& p, const auto& q) {
        compare(v + " name", p.name, q.name);
        near(v + " start", p.startStation, q.startStation);
        near(v + " end", p.endStation, q.endStation);
        compare(v + " stations", p.stations.size(), q.stations.size());
        compare(v + " the same stations", p.stations == q.stations, true);
        compare(v + " pending labels", p.pendingLabels.size(), q.pendingLabels.size());
        compare(v + " the same pending labels", p.pendingLabels == q.pendingLabels, true);
        lists(v + ", section", p.sections, q.sections,
              [&](const auto& u, const auto& s, const auto& t) { section(u, s, t); });
      });
    });
  }
  void section(const std::string& where, const civil::CorridorSection& a, const civil::CorridorSection& b) {
    compare(where + " station", a.station, b.station);
    compare(where + " label", a.label, b.label);
    compare(where + " computed", a.origin == civil::SectionOrigin::Computed,
            b.origin == civil::SectionOrigin::Computed);
    lists(where + ", part", a.parts, b.parts, [&](const auto& w, const auto& x, const auto& y) {
      compare(w + " codes", x.codes == y.codes, true);
      lists(w + ", point", x.points, y.points, [&](const auto& v, const auto& p, const auto& q) {
        compare(v + " codes", p.codes == q.codes, true);
        near(v + " offset", p.offset, q.offset);
        near(v + " elevation", p.elevation, q.elevation);
      });
    });
  }

  std::string text_;
};

}  // namespace lvx::landxml::testing
