#include "filter/FilterModel.h"
#include "filter/QuickSearch.h"
#include "filter/tests/FuzzSupport.h"

#include <cstddef>
#include <cstdint>

// Any text in a search field: a filter that the dialog accepts unchanged, or an error; and any text as a filter: what
// the field shows for it gives that filter again.

namespace tavix {
namespace {

using testing::holdsOrAborts;
using testing::SilentMessages;

void search(std::string_view text) {
    for (const DistributionKind kind : {DistributionKind::Frequency, DistributionKind::Pattern}) {
        if (const auto shown = QuickSearchOf(text, kind))
            holdsOrAborts(*QuickFilter(*shown, kind) == text);
        const Result<std::string> filter = QuickFilter(text, kind);
        if (!filter) {
            holdsOrAborts(!filter.error().text.empty());
            continue;
        }
        SilentMessages messages;
        FilterModel model(messages, kind, *filter);
        holdsOrAborts(model.Accept() && model.FilterText() == *filter);
    }
}

} // namespace
} // namespace tavix

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavix::search({reinterpret_cast<const char*>(data), size});
    return 0;
}
