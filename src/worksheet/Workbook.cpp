#include "worksheet/Workbook.h"

#include "worksheet/CompoundFile.h"
#include "worksheet/WorkbookStream.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace tavix::worksheet {

namespace {

constexpr const char* kFirstSheet = "Sheet1";
constexpr const char* kStream = "Workbook";

} // namespace

Workbook::Workbook(std::size_t memoryBytes) : m_store(std::make_unique<WorkbookStore>(memoryBytes)) {
    static_cast<void>(addSheet(kFirstSheet));
}

Workbook::~Workbook() = default;

Sheet* Workbook::sheet(std::string_view name) {
    for (const auto& sheet : m_sheets)
        if (SheetNames::same(sheet->name(), name))
            return sheet.get();
    return nullptr;
}

Result<Sheet*> Workbook::addSheet(std::string_view name) {
    if (Status added = m_store->names.add(name); !added)
        return added.error();
    m_sheets.push_back(std::make_unique<Sheet>(*m_store, std::string(name)));
    return m_sheets.back().get();
}

Status Workbook::rename(Sheet& sheet, std::string_view name) {
    if (sheet.continued())
        return Error{fmt::format("The worksheet \"{}\" continues on others and keeps its name", sheet.name())};
    m_store->names.remove(sheet.name());
    Status added = m_store->names.add(name);
    if (!added) {
        static_cast<void>(m_store->names.add(sheet.name()));
        return added;
    }
    sheet.setName(std::string(name));
    return {};
}

Status Workbook::save(const std::string& path) const {
    if (const Status& kept = m_store->spools.status(); !kept)
        return kept;
    std::vector<SheetImage> images;
    for (const auto& sheet : m_sheets)
        for (SheetImage& image : sheet->images())
            images.push_back(std::move(image));

    Result<std::unique_ptr<CompoundFile>> file = CompoundFile::create(path, kStream);
    if (!file)
        return file.error();
    const Sink sink = [&file](std::string_view bytes) { return (*file)->write(bytes); };
    if (Status written = writeWorkbookStream(images, m_store->strings, sink); !written)
        return written;
    return (*file)->commit();
}

} // namespace tavix::worksheet
