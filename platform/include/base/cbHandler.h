#pragma once

// CbHandler<T> is declared with its dispatcher, whose algorithms it shares.
#include <base/cbDispatcher.h>
