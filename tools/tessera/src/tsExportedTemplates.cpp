// Instantiations of host templates that this module exports for sibling
// modules: the only symbols it exports besides its package's getType.
#include "tsExportedTemplates.h"

#include <ostream>

template class CbDispatcher<CbEmptyType>;
template class CbHandler<CbEmptyType>;

// The matte-parameter broadcast of TsMgInputValues.
template class CbDispatcher<const TsMgTypes::MatteParam>;
template class CbHandler<const TsMgTypes::MatteParam>;

// The value holder's counted pointers, with their dump.
template RCBasePtr<TsMgInputValues>::~RCBasePtr();
template RCBasePtr<const TsMgInputValues>::~RCBasePtr();
template void RCBasePtr<TsMgInputValues>::dump(std::ostream&) const;
template void RCBasePtr<const TsMgInputValues>::dump(std::ostream&) const;
template class RCShdPtr<TsMgInputValues>;
template class RCShdPtr<const TsMgInputValues>;

// Event predicates of the viewer tools, with their implementation nodes.
template class PrdPredicate<EvEvent>;
template class PrdPredicateImp<EvEvent>;
template class PrdCompositePredicateImp<EvEvent>;
template class PrdAndPredicateImp<EvEvent>;
template class PrdOrPredicateImp<EvEvent>;
template class PrdNotPredicateImp<EvEvent>;
template class PrdAllPredicateImp<EvEvent>;
template class PrdFunctorPredicateImp<EvEvent>;

// What UiNodeWidget::setContent answers the main panel: the iterator over the
// items a node widget built, and its implementation over none.
template class Iterator<UiNodeWidgetFactory::Item>;
template class IteratorEmpty<UiNodeWidgetFactory::Item>;
