// The text of a window's title bar, drawn in the panels' font at the screen's scale.
#pragma once

#include <string>

namespace xphost {

// Draws `text` in white from (x, baseline), global boxels, no wider than maxWidth
// boxels, with the current draw pass's matrices; returns the part of it that fitted
// (empty when nothing could be drawn, e.g. without the font).
std::string drawTitleText(const std::string& text, float x, float baseline, float maxWidth, float scale);

}  // namespace xphost
