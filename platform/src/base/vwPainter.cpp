#include <base/vwPainter.h>

VwPainter::~VwPainter() = default;
