#include "filter/FilterModel.h"
#include "filter/QuickSearch.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

// Any text in a search field: a filter that the dialog accepts unchanged, or an error; and any text as a filter: what
// the field shows for it gives that filter again.

namespace tavix {
namespace {

class SilentMessages final : public Messages {
  public:
    void warn(std::string_view, std::string_view) override {}
    Answer ask(std::string_view, std::string_view, Answer) override { return Answer::Yes; }
    std::unique_ptr<Busy> busy() override { return nullptr; }
};

void holdsOrAborts(bool condition) {
    if (!condition)
        std::abort();
}

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
