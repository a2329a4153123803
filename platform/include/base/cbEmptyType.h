#pragma once

#include <base/baseExport.h>

// The payload of a broadcast that carries no data.
struct TS_BASE_API CbEmptyType {};
