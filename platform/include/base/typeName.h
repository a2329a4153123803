#pragma once

#include <base/baseExport.h>
#include <string>
#include <typeinfo>

// Readable (demangled) names of types, for error texts and listings.
TS_BASE_API std::string typeNameOf(const std::type_info& info);

template <class T>
std::string typeNameOf() {
    return typeNameOf(typeid(T));
}

// The dynamic type of an object.
template <class T>
std::string dynamicTypeNameOf(const T& object) {
    return typeNameOf(typeid(object));
}
