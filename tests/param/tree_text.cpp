#include "param/tree_text.h"

#include <vector>

namespace {

std::vector<std::string> Names(CTEnum<const char*>* names) {
    NamesPtr walk(names);
    std::vector<std::string> all;
    const char* name;
    unsigned fetched;
    while (walk && walk->Next(1, &name, &fetched)) all.push_back(name);
    return all;
}

std::string Number(double number) {
    char text[64];
    snprintf(text, sizeof text, "%g", number);
    return text;
}

std::string BareText(const tagQXVARIANT& v) {
    auto join = [](auto... numbers) {
        std::string all;
        ((all += (all.empty() ? "" : ",") + Number(numbers)), ...);
        return all;
    };
    const tagQXVALUE& value = v.value;
    switch (v.type) {
        case QXVT_EMPTY:
            return "";
        case QXVT_UI1:
            return std::to_string(value.ui1Val);
        case QXVT_UI2:
            return std::to_string(value.ui2Val);
        case QXVT_ULONG:
        case QXVT_UINT:
            return std::to_string(value.uintVal);
        case QXVT_BOOL:
        case QXVT_INT:
        case QXVT_LONG:
            return std::to_string(value.intVal);
        case QXVT_DOUBLE:
            return Number(value.doubleVal);
        case QXVT_FLOAT:
            return Number(value.floatVal);
        case QXVT_STRING:
            return value.string;
        case QXVT_SIZE:
            return join(value.size.cx, value.size.cy);
        case QXVT_RSIZE:
            return join(value.rsize.cx, value.rsize.cy);
        case QXVT_POINT:
            return join(value.point.x, value.point.y);
        case QXVT_RPOINT:
            return join(value.rpoint.x, value.rpoint.y);
        case QXVT_RECT:
            return join(value.rect.left, value.rect.top, value.rect.right, value.rect.bottom);
        case QXVT_RRECT:
            return join(value.rrect.left, value.rrect.top, value.rrect.right, value.rrect.bottom);
        default:
            return "?";
    }
}

}  // namespace

std::string ValueText(const tagQXVARIANT& value) {
    return std::to_string(value.type) + ":" + BareText(value);
}

std::string NamesText(CTEnum<const char*>* names) {
    std::string text;
    for (const std::string& name : Names(names)) text += (text.empty() ? "" : ",") + name;
    return text;
}

std::string TreeText(IParam* node) {
    std::string text;
    for (const std::string& name : Names(node->EnumValues())) {
        CQXVariant value;
        // A name that is a path is not read back, so it stands alone.
        bool found = name.find('\\') == std::string::npos && node->GetValue(name.c_str(), &value);
        text += (text.empty() ? "" : " ") + name + (found ? "=" + ValueText(value) : "");
    }
    for (const std::string& name : Names(node->EnumSubParams())) {
        ParamPtr child(node->OpenSubParam(name.c_str(), 0));
        text +=
            (text.empty() ? "" : " ") + name + "{" + (child ? TreeText(child.Get()) : "?") + "}";
    }
    return text;
}
