#include "alert/AlertLine.h"

#include "report/AlertTexts.h"
#include "report/CAlertDisplayHelper.h"

namespace tavix {

AlertLine alertLine(const AlertState& alert) {
    return {{alert.description, std::string(CAlertDisplayHelper::TypeWord(alert.typeCode)), alert.input,
             alertPath(alert), alert.sentence}};
}

} // namespace tavix
