#pragma once

#include <string>

/// The text of docs/position-formats.md, made by the formats themselves.
std::string positionFormatsPage();
