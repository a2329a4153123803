#include <base/typeName.h>

#include <cstdlib>
#include <cxxabi.h>
#include <memory>

std::string typeNameOf(const std::type_info& info) {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(info.name(), nullptr, nullptr, &status), std::free);
    if (status == 0 && name) {
        return name.get();
    }
    return info.name();
}
