#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

#include "common/number_format.hpp"
#include "common/shown_text.hpp"
#include "common/vector.hpp"
#include "dravo/drawing.hpp"
#include "scene/colours.hpp"
#include "scene/element_colours.hpp"
#include "scene/pieces.hpp"

namespace dravo {
namespace {

/// Radii in Angstrom.
constexpr double kStick = 0.11, kLine = 0.03, kArc = 0.03, kShaft = 0.06, kHead = 0.16;
constexpr double kHeadLength = 0.4;

constexpr double kDegreesOfPiece = 5.0;

class BildWriter {
 public:
  explicit BildWriter(const Drawing& drawing) : palette_(palette_of(drawing.theme)) {
    add_comment(drawing.title);
    add_comment(drawing.description);
  }

  std::string write(const Scene& scene) {
    for (const Ball& ball : scene.balls) {
      set_colour(element_colour(ball.element));
      text_ += fmt::format(".sphere {} {}\n", point(ball.centre), number(ball.radius));
    }
    for (const Stick& stick : scene.sticks) {
      set_colour(element_colour(stick.element));
      add_cylinder(stick.from, stick.to, kStick);
    }
    for (const Line& line : scene.lines) add_line(line);
    for (const Arrow& arrow : scene.arrows) add_arrow(arrow);
    for (const Arc& arc : scene.arcs) add_arc(arc);
    for (const Caption& caption : scene.captions) {
      set_colour(palette_.of(caption.ink));
      text_ += fmt::format(".cmov {}\n{}\n", point(caption.at), caption.text);
    }
    return std::move(text_);
  }

 private:
  static std::string number(double value) { return fixed_text(value + 0.0, 4); }
  static std::string point(const Vec3& p) {
    return fmt::format("{} {} {}", number(p.x), number(p.y), number(p.z));
  }

  /// One line, whatever a file name has.
  void add_comment(std::string_view text) {
    const std::string shown = printable(text, std::numeric_limits<std::size_t>::max()).text;
    if (!shown.empty()) text_ += fmt::format(".comment {}\n", shown);
  }

  /// Parts of red, green and blue.
  void set_colour(std::uint32_t colour) {
    if (colour == colour_) return;
    colour_ = colour;
    const auto part = [&](unsigned shift) {
      return fixed_text(((colour >> shift) & 0xFFU) / 255.0, 3);
    };
    text_ += fmt::format(".color {} {} {}\n", part(16), part(8), part(0));
  }

  void add_cylinder(const Vec3& from, const Vec3& to, double radius) {
    text_ += fmt::format(".cylinder {} {} {}\n", point(from), point(to), number(radius));
  }

  void add_line(const Line& line) {
    set_colour(palette_.of(line.ink));
    if (!line.dashed) {
      add_cylinder(line.from, line.to, kLine);
      return;
    }
    const Vec3 along = line.to - line.from;
    const int dashes = std::max(static_cast<int>(std::ceil(modulus(along) / kDash)), 1);
    const Vec3 step = (1.0 / dashes) * along;
    for (int k = 0; k < dashes; ++k)
      add_cylinder(line.from + k * step, line.from + (k + kDashPart) * step, kLine);
  }

  void add_arrow(const Arrow& arrow) {
    set_colour(palette_.of(arrow.ink));
    const double length = modulus(arrow.to - arrow.from);
    text_ +=
        fmt::format(".arrow {} {} {} {} {}\n", point(arrow.from), point(arrow.to), number(kShaft),
                    number(kHead), number(1.0 - std::min(kHeadLength / length, 0.5)));
  }

  void add_arc(const Arc& arc) {
    set_colour(palette_.of(arc.ink));
    const int pieces = static_cast<int>(std::ceil(arc.degrees / kDegreesOfPiece));
    const auto at = [&](double k) { return point_of(arc, k / pieces); };
    for (int k = 0; k < pieces; ++k) add_cylinder(at(k), at(k + 1), kArc);
  }

  const Palette& palette_;
  std::string text_;
  std::uint32_t colour_ = ~0U;
};

}  // namespace

std::string bild_of(const Scene& scene, const Drawing& drawing) {
  return BildWriter(drawing).write(scene);
}

}  // namespace dravo
