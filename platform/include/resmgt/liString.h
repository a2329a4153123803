#pragma once

#include <string>

// The host's string: UTF-8 text. The standard string serves, so host and
// plugin code pass strings both ways without conversions.
using LiString = std::string;
