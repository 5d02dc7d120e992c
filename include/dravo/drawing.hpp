/// @file
/// Scenes as files: SVG for papers, BILD and chemiscope's JSON for viewers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "dravo/scene.hpp"

namespace dravo {

/// Where somebody stands who looks at molecule 2, whose Z axis points up: degrees, the azimuth from
/// X towards Y, the elevation from -90 to 90. There, with azimuth -90, X points right and Y up.
struct ViewDirection {
  double azimuth = 35.0;    ///< from X towards Y
  double elevation = 20.0;  ///< above the plane of X and Y

  /// "x", "y", "z", each from its tip; "iso"; "AZ,EL". Throws InvalidInput.
  static ViewDirection of_text(std::string_view text);
};

/// For which background a drawing is.
enum class Theme {
  light,  ///< a white one
  dark,   ///< a dark one
};

/// How a scene is drawn.
struct Drawing {
  ViewDirection view = {};       ///< from where it is seen
  std::int32_t width = 800;      ///< pixels
  std::int32_t height = 600;     ///< pixels
  Theme theme = Theme::light;    ///< its colours
  std::string title = {};        ///< for whom the picture is read to
  std::string description = {};  ///< the same, one or more sentences
};

/// A parallel projection that fills the picture. Equal scenes have equal bytes.
std::string svg_of(const Scene& scene, const Drawing& drawing = {});

/// The same as the bytes of a PNG file. Throws IoFailure where this build or machine cannot make
/// one.
std::string png_of(const Scene& scene, const Drawing& drawing = {});

/// The scene in space as a BILD file, which UCSF ChimeraX and Chimera show. View and size are not
/// looked at.
std::string bild_of(const Scene& scene, const Drawing& drawing = {});

}  // namespace dravo
