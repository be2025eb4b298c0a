// What a rendering did, for people and for programs.
#pragma once

#include <string>

#include "tools/zoq/render.h"

namespace zoq {

// One line per figure: a label of 16 characters, then the value.
std::string text_report(const RenderOptions& options, const RenderResult& result);

// One JSON object; levels of silence are null.
std::string json_report(const RenderOptions& options, const RenderResult& result);

}  // namespace zoq
