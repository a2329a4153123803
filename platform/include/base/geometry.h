#pragma once

#include <base/geAffineMatrix3.h>
#include <base/gePoint2.h>
#include <base/geRectangle.h>
