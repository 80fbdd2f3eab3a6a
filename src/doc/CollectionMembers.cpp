#include "doc/CollectionMembers.h"

#include "access/Layouts.h"
#include "base/GenException.h"
#include "doc/CTavixDoc.h"

namespace tavix {

namespace {

// The error message; "" when the field was added.
std::string add(PrViewer& viewer, int collectionId, int fieldId) {
    try {
        if (viewer.createGlobalCollFieldMapping(collectionId, fieldId))
            return {};
        return "Unable to create field collection mapping:\n\n" + viewer.getErrorString().str();
    } catch (const GenException& exception) {
        return "Unable to add field to collection:\n\n" + exception.getText().str();
    }
}

} // namespace

std::vector<std::pair<int, std::string>> collectionChoices(CTavixDoc& document) {
    std::vector<std::pair<int, std::string>> choices;
    if (!document.GetViewer())
        return choices;
    try {
        const ProfileCursorHandle rows = document.GetViewer()->getGlobalCollections();
        while (rows && rows->next())
            choices.emplace_back(rows->getColumnInt(layout::CollectionId),
                                 rows->getColumnValue(layout::CollectionName).str());
    } catch (const GenException&) {
        // The menu stays empty; the Collections page of the navigator shows the error.
        choices.clear();
    }
    return choices;
}

int addFieldsToCollection(CTavixDoc& document, int collectionId, std::span<const int> fieldIds) {
    if (!document.GetViewer())
        return 0;
    int added = 0;
    std::string problem;
    {
        const std::unique_ptr<Messages::Busy> busy = document.GetMessages().busy();
        for (const int fieldId : fieldIds) {
            problem = add(*document.GetViewer(), collectionId, fieldId);
            if (!problem.empty())
                break;
            ++added;
        }
    }
    if (added > 0)
        document.CollectionsRefreshed();
    if (!problem.empty())
        document.GetMessages().warn(problem);
    return added;
}

} // namespace tavix
