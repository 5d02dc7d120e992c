#include "scene/projection.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <map>
#include <utility>
#include <vector>

#include "common/constants.hpp"
#include "scene/ball_radius.hpp"
#include "scene/pieces.hpp"

namespace dravo {
namespace {

// --- sizes ------------------------------------------------------------------------------------

/// Widths in Angstrom, and in pixels where that would be less.
struct Width {
  double angstrom;
  double least;
};

constexpr Width kStick{0.20, 2.0}, kShaft{0.08, 2.0}, kArc{0.045, 1.5}, kLine{0.045, 1.2};
constexpr Width kFaint{0.03, 1.0};
constexpr Width kHead{0.36, 11.0}, kArcHead{0.22, 8.0};  ///< lengths of the heads of arrows
constexpr double kHeadRadius = 0.36;                     ///< as part of its length

/// Sticks begin below the surface of their ball, as part of its radius.
constexpr double kStickBegins = 0.9;

/// Lines are cut where others may pass before or behind them.
constexpr double kPiece = 0.4;  ///< Angstrom
constexpr double kMostPieces = 80.0;
constexpr double kDegreesOfPiece = 6.0;

constexpr double kFontPart = 1.0 / 36.0;  ///< of the height of a picture
constexpr double kSmallestFont = 11.0, kLargestFont = 48.0;

/// In heights of words: what a letter takes, how far apart lines of words are, and the room that
/// the longest of them need around the scene.
constexpr double kLetterWidth = 0.56, kLineHeight = 1.15;
constexpr double kMarginX = 3.2, kMarginY = 1.4;

// --- the box around a scene -------------------------------------------------------------------

struct Box {
  Point low{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
  Point high{-low.x, -low.y};

  void add(double x, double y, double radius) {
    low = {std::min(low.x, x - radius), std::min(low.y, y - radius)};
    high = {std::max(high.x, x + radius), std::max(high.y, y + radius)};
  }
};

constexpr int kPointsInBox = 16;  ///< of an arc

Box box_of(const Scene& scene, const Matrix3& rows) {
  Box box;
  const auto add = [&](const Vec3& p, double radius) {
    box.add(dot(rows.row[0], p), -dot(rows.row[1], p), radius);
  };
  for (const Ball& ball : scene.balls) add(ball.centre, ball.radius);
  for (const Arrow& arrow : scene.arrows) add(arrow.to, 0.0);
  for (const Line& line : scene.lines) {
    add(line.from, 0.0);
    add(line.to, 0.0);
  }
  for (const Arc& arc : scene.arcs)
    for (int k = 0; k <= kPointsInBox; ++k)
      add(point_of(arc, static_cast<double>(k) / kPointsInBox), 0.0);
  for (const Caption& caption : scene.captions) add(caption.at, 0.0);
  return box;
}

// --- words ------------------------------------------------------------------------------------

/// Of a UTF-8 text.
double letters_in(const std::string& text) {
  return static_cast<double>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
  }));
}

/// The words that stand in a picture, by the squares of a line's height that they touch: of
/// thousands only the near ones are looked at.
class TakenRoom {
 public:
  explicit TakenRoom(double font) : font_(font) {}

  [[nodiscard]] bool is_free(const Words& words) const {
    return !any_square(words, [&](const Square& square) {
      const auto there = taken_.find(square);
      return there != taken_.end() &&
             std::any_of(there->second.begin(), there->second.end(),
                         [&](const Room& room) { return overlaps(room_of(words), room); });
    });
  }

  void take(const Words& words) {
    (void)any_square(words, [&](const Square& square) {
      taken_[square].push_back(room_of(words));
      return false;
    });
  }

 private:
  using Square = std::pair<std::int64_t, std::int64_t>;

  struct Room {
    Point middle;
    double letters;
  };

  static Room room_of(const Words& words) { return {words.middle, letters_in(words.text)}; }

  [[nodiscard]] bool overlaps(const Room& a, const Room& b) const {
    return std::abs(a.middle.x - b.middle.x) <
               0.5 * (a.letters + b.letters) * kLetterWidth * font_ &&
           std::abs(a.middle.y - b.middle.y) < 0.95 * kLineHeight * font_;
  }

  /// Whether one of the squares that words touch is such.
  template <class IsSuch>
  [[nodiscard]] bool any_square(const Words& words, const IsSuch& is_such) const {
    const double side = kLineHeight * font_;
    const double half_width = 0.5 * letters_in(words.text) * kLetterWidth * font_;
    const auto square = [&](double x) { return static_cast<std::int64_t>(std::floor(x / side)); };
    const auto& [x, y] = words.middle;
    for (auto column = square(x - half_width); column <= square(x + half_width); ++column)
      for (auto row = square(y - 0.5 * side); row <= square(y + 0.5 * side); ++row)
        if (is_such(Square{column, row})) return true;
    return false;
  }

  double font_;
  std::map<Square, std::vector<Room>> taken_;
};

// --- marks ------------------------------------------------------------------------------------

class Projector {
 public:
  explicit Projector(const Paper& paper) : paper_(paper), room_(paper.font) {}

  Projection project(const Scene& scene) {
    for (const Ball& ball : scene.balls)
      add(ball.centre, Disc{at(ball.centre), paper_.scale * ball.radius, ball.element});
    for (const Stick& stick : scene.sticks) add_stick(stick);
    for (const Line& line : scene.lines)
      add_line(line.from, line.to, line.ink == Ink::faint ? kFaint : kLine, line.ink, line.dashed);
    for (const Arrow& arrow : scene.arrows) add_arrow(arrow);
    for (const Arc& arc : scene.arcs) add_arc(arc);
    std::stable_sort(projection_.marks.begin(), projection_.marks.end(),
                     [](const Mark& a, const Mark& b) { return a.depth < b.depth; });
    for (const Caption& caption : scene.captions) add_words(caption);
    return std::move(projection_);
  }

 private:
  [[nodiscard]] Point at(const Vec3& p) const {
    return {paper_.origin.x + paper_.scale * dot(paper_.rows.row[0], p),
            paper_.origin.y - paper_.scale * dot(paper_.rows.row[1], p)};
  }

  [[nodiscard]] double pixels(const Width& width) const {
    return std::max(paper_.scale * width.angstrom, width.least);
  }

  template <class Shape>
  void add(const Vec3& where, Shape shape) {
    constexpr double kMillionth = 1e6;  // what rounding leaves decides about no order
    const double depth = std::floor(kMillionth * dot(paper_.rows.row[2], where) + 0.5);
    projection_.marks.push_back({static_cast<std::int64_t>(depth), std::move(shape)});
  }

  void add_stick(const Stick& stick) {
    const Vec3 along = stick.to - stick.from;
    const double length = modulus(along);
    const double hidden = kStickBegins * ball_radius(stick.element);
    if (hidden >= length) return;
    const Vec3 from = stick.from + (hidden / length) * along;
    add(0.5 * (from + stick.to), Rod{at(from), at(stick.to), pixels(kStick), stick.element});
  }

  void add_piece(const Vec3& from, const Vec3& to, const Width& width, Ink ink) {
    add(0.5 * (from + to), Stroke{at(from), at(to), pixels(width), ink});
  }

  void add_line(const Vec3& from, const Vec3& to, const Width& width, Ink ink, bool dashed) {
    const Vec3 along = to - from;
    const double wanted = std::ceil(modulus(along) / (dashed ? kDash : kPiece));
    const int pieces = static_cast<int>(std::clamp(wanted, 1.0, kMostPieces));
    const double part = dashed ? kDashPart : 1.0;
    const auto at_piece = [&](double k) { return from + (k / pieces) * along; };
    for (int k = 0; k < pieces; ++k) add_piece(at_piece(k), at_piece(k + part), width, ink);
  }

  void add_arrow(const Arrow& arrow) {
    const Vec3 along = arrow.to - arrow.from;
    const double length = modulus(along);
    const Vec3 direction = (1.0 / length) * along;
    const double head = std::min(pixels(kHead) / paper_.scale, 0.5 * length);
    const Vec3 base = arrow.to - head * direction;
    add_line(arrow.from, base, kShaft, arrow.ink, false);
    add_head(base, direction, head, arrow.ink);
  }

  /// A cone: the circle of its base, and the triangle of its outline.
  void add_head(const Vec3& base, const Vec3& direction, double length, Ink ink) {
    const Vec3 &right = paper_.rows.row[0], &up = paper_.rows.row[1], &to_eye = paper_.rows.row[2];
    const double radius = kHeadRadius * length;
    const double dx = dot(right, direction), dy = dot(up, direction);
    const double seen = std::hypot(dx, dy);
    constexpr double kSeenFromItsTip = 1e-6;
    const bool flat = seen < kSeenFromItsTip;
    const Vec3 across = flat ? right : (dx / seen) * up - (dy / seen) * right;
    const Vec3 other = cross(direction, across);
    Polygon circle{{}, ink};
    constexpr int kCorners = 16;
    for (int k = 0; k < kCorners; ++k) {
      const double angle = kRadiansPerDegree * 360.0 * k / kCorners;
      circle.corners.push_back(
          at(base + radius * (std::cos(angle) * across + std::sin(angle) * other)));
    }
    add(base, std::move(circle));
    const Vec3 tip = base + length * direction;
    if (!flat)
      add(dot(to_eye, direction) > 0.0 ? tip : base,
          Polygon{{at(base - radius * across), at(tip), at(base + radius * across)}, ink});
  }

  void add_arc(const Arc& arc) {
    const double head = pixels(kArcHead) / paper_.scale;
    const double part_of_head = head / (arc.radius * kRadiansPerDegree * arc.degrees);
    const bool with_head = part_of_head < 0.6;
    const double shaft = with_head ? 1.0 - part_of_head : 1.0;
    const int pieces = static_cast<int>(std::ceil(shaft * arc.degrees / kDegreesOfPiece));
    const auto at_piece = [&](double k) { return point_of(arc, shaft * (k / pieces)); };
    for (int k = 0; k < pieces; ++k) add_piece(at_piece(k), at_piece(k + 1), kArc, arc.ink);
    if (!with_head) return;
    const Vec3 base = point_of(arc, shaft), along = point_of(arc, 1.0) - base;
    const double length = modulus(along);
    add_head(base, (1.0 / length) * along, length, arc.ink);
  }

  // --- words ------------------------------------------------------------------------------------

  /// Where they belong, or above or below where others stand there.
  void add_words(const Caption& caption) {
    Words words{at(caption.at), caption.text, caption.ink};
    const double middle = words.middle.y;
    for (const double lines : {0.0, -1.0, 1.0, -2.0, 2.0, -3.0, 3.0}) {
      words.middle.y = middle + lines * kLineHeight * paper_.font;
      if (room_.is_free(words)) break;
    }
    room_.take(words);
    projection_.words.push_back(std::move(words));
  }

  const Paper& paper_;
  TakenRoom room_;
  Projection projection_;
};

}  // namespace

Matrix3 view_rows(const ViewDirection& view) {
  const double azimuth = kRadiansPerDegree * view.azimuth;
  const double elevation = kRadiansPerDegree * view.elevation;
  const double ca = std::cos(azimuth), sa = std::sin(azimuth);
  const double ce = std::cos(elevation), se = std::sin(elevation);
  return {{{{-sa, ca, 0.0}, {-se * ca, -se * sa, ce}, {ce * ca, ce * sa, se}}}};
}

Paper fitted_paper(const Scene& scene, const Matrix3& rows, double width, double height) {
  const double font = std::clamp(kFontPart * height, kSmallestFont, kLargestFont);
  const Box box = box_of(scene, rows);
  const double room_x = std::max(width - 2.0 * kMarginX * font, 0.25 * width);
  const double room_y = std::max(height - 2.0 * kMarginY * font, 0.25 * height);
  constexpr double kSmallest = 4.0;  // Angstrom
  const double scale = std::min(room_x / std::max(box.high.x - box.low.x, kSmallest),
                                room_y / std::max(box.high.y - box.low.y, kSmallest));
  return {rows,
          scale,
          {0.5 * width - 0.5 * scale * (box.low.x + box.high.x),
           0.5 * height - 0.5 * scale * (box.low.y + box.high.y)},
          font};
}

Projection projected(const Scene& scene, const Paper& paper) {
  return Projector(paper).project(scene);
}

}  // namespace dravo
