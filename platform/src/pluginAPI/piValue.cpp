#include <pluginAPI/piValue.h>

#include <cmath>
#include <sstream>

const char* PiValueUtil::getTypeName(PiValueType type) {
    switch (type) {
    case PiValueType::Double:
        return "double";
    case PiValueType::Int:
        return "int";
    case PiValueType::Bool:
        return "bool";
    case PiValueType::RgbColor:
        return "rgb";
    case PiValueType::StringList:
        return "strings";
    case PiValueType::Image:
        return "image";
    case PiValueType::NodeRef:
        return "node";
    case PiValueType::NodeRefList:
        return "nodes";
    }
    return "?";
}

bool PiValueUtil::equal(const PiValue& a, const PiValue& b) {
    if (a.index() != b.index()) {
        return false;
    }
    return std::visit(
        [&b](const auto& va) {
            using T = std::decay_t<decltype(va)>;
            const T& vb = std::get<T>(b);
            if constexpr (std::is_same_v<T, PiClipPtr>) {
                return va.get() == vb.get();
            } else {
                return va == vb;
            }
        },
        a);
}

bool PiValueUtil::isFinite(const PiValue& v) {
    if (const double* d = std::get_if<double>(&v)) {
        return std::isfinite(*d);
    }
    if (const auto* c = std::get_if<CoRgbColorTyped<float>>(&v)) {
        return std::isfinite(c->r) && std::isfinite(c->g) && std::isfinite(c->b);
    }
    return true;
}

bool PiValueUtil::isAnimatable(PiValueType type) {
    return type == PiValueType::Double || type == PiValueType::Int || type == PiValueType::Bool ||
           type == PiValueType::RgbColor;
}

PiValue PiValueUtil::interpolate(const PiValue& a, const PiValue& b, double t) {
    if (t >= 1.0) {
        return b;
    }
    if (a.index() != b.index() || t <= 0.0) {
        return a;
    }
    if (const double* da = std::get_if<double>(&a)) {
        return *da + (std::get<double>(b) - *da) * t;
    }
    if (const auto* ca = std::get_if<CoRgbColorTyped<float>>(&a)) {
        const auto& cb = std::get<CoRgbColorTyped<float>>(b);
        const float f = static_cast<float>(t);
        return CoRgbColorTyped<float>(ca->r + (cb.r - ca->r) * f, ca->g + (cb.g - ca->g) * f,
                                      ca->b + (cb.b - ca->b) * f);
    }
    return a;
}

std::size_t PiValueUtil::extraBytes(const PiValue& v) {
    if (const auto* list = std::get_if<PiStringList>(&v)) {
        std::size_t bytes = list->capacity() * sizeof(std::string);
        for (const std::string& s : *list) {
            if (s.capacity() > 15) {
                bytes += s.capacity() + 1;
            }
        }
        return bytes;
    }
    if (const auto* refs = std::get_if<PiNodeRefList>(&v)) {
        return refs->capacity() * sizeof(PiNodeRef);
    }
    return 0;
}

LiString PiValueUtil::toText(const PiValue& v) {
    std::ostringstream os;
    os.precision(9);
    std::visit(
        [&os](const auto& value) {
            using T = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<T, double> || std::is_same_v<T, int>) {
                os << value;
            } else if constexpr (std::is_same_v<T, bool>) {
                os << (value ? "true" : "false");
            } else if constexpr (std::is_same_v<T, CoRgbColorTyped<float>>) {
                os << "(" << value.r << ", " << value.g << ", " << value.b << ")";
            } else if constexpr (std::is_same_v<T, PiStringList>) {
                os << "[";
                for (std::size_t i = 0; i < value.size(); ++i) {
                    os << (i ? ", " : "") << '"' << value[i] << '"';
                }
                os << "]";
            } else if constexpr (std::is_same_v<T, PiClipPtr>) {
                if (value) {
                    os << "image " << value->getClipWidth() << "x" << value->getClipHeight();
                } else {
                    os << "no image";
                }
            } else if constexpr (std::is_same_v<T, PiNodeRef>) {
                os << (value.isNone() ? std::string("none") : "node #" + std::to_string(value.id));
            } else {
                os << "[";
                for (std::size_t i = 0; i < value.size(); ++i) {
                    os << (i ? ", " : "")
                       << (value[i].isNone() ? std::string("none")
                                             : "node #" + std::to_string(value[i].id));
                }
                os << "]";
            }
        },
        v);
    return os.str();
}
