#include "findings/Catalogue.h"

#include "findings/CatalogueParts.h"

#include <algorithm>
#include <vector>

namespace tavix::findings {

namespace {

/// Replaces the field `Value` outside of texts.
std::string overField(std::string_view condition, std::string_view field) {
    constexpr std::string_view kValue = "`Value`";
    std::string name = "`";
    for (const char c : field) {
        name += c;
        if (c == '`')
            name += '`';
    }
    name += '`';
    std::string text;
    bool isText = false;
    for (std::size_t at = 0; at < condition.size();) {
        if (!isText && condition.substr(at).starts_with(kValue)) {
            text += name;
            at += kValue.size();
            continue;
        }
        const bool isEscaped = isText && condition.substr(at).starts_with("\\'");
        if (condition[at] == '\'')
            isText = !isText;
        text += condition.substr(at, isEscaped ? 2 : 1);
        at += isEscaped ? 2 : 1;
    }
    return text;
}

} // namespace

std::span<const CatalogueEntry> catalogue() {
    static const std::vector<CatalogueEntry> kAll = [] {
        std::vector<CatalogueEntry> all;
        for (const auto part : {catalogueOfTypes(), catalogueOfWriting(), catalogueOfContents(), catalogueOfShape(),
                                catalogueOfQuantities()})
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }();
    return kAll;
}

const CatalogueEntry* findEntry(std::string_view code) {
    const auto all = catalogue();
    const auto entry =
        std::find_if(all.begin(), all.end(), [code](const CatalogueEntry& known) { return known.code == code; });
    return entry == all.end() ? nullptr : &*entry;
}

std::string ruleFor(std::string_view condition, std::string_view field) {
    // Null passes, as does what the condition cannot judge.
    return "not ifnull(" + overField(condition, field) + ", false)";
}

} // namespace tavix::findings
