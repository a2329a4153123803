// Instantiations of host templates that this module exports for sibling
// modules.
#include <base/cbDispatcher.h>
#include <base/cbEmptyType.h>

template class CbDispatcher<CbEmptyType>;
template class CbHandler<CbEmptyType>;
