#include "tsPixelKernel.h"

// Alone in their file, so that no pixel loop sees their values.
const float tsPixelZero = 0.0f;
const float tsPixelOne = 1.0f;
