#include "findings/CatalogueParts.h"

namespace tavix::findings {

namespace {

constexpr CatalogueEntry kEntries[] = {
    {"numbers-as-text", "Numbers kept as text", "definite",
     "the type of the field is text, and the share of its values that the job asks for is read as numbers",
     "Texts are sorted by the alphabet and cannot be summed; a few other values or the way of writing keep the field "
     "from being a number.",
     "Correct the values that do not fit, and declare the field as a number where it is loaded.",
     "the rule not isblank(`FIELD`) and fits(`FIELD`, 'READING'), with the reading that the profile shows"},
    {"dates-as-text", "Dates kept as text", "definite",
     "the type of the field is text, and the share of its values that the job asks for is read as dates",
     "Texts are sorted by the alphabet, so that the newest date and every period are wrong.",
     "Load the field as a date in the form that the profile names, or write ISO dates at the source.",
     "the rule not isblank(`FIELD`) and fits(`FIELD`, 'READING'), with the reading that the profile shows"},
    {"booleans-as-text", "Booleans kept as text", "definite",
     "the type of the field is text, and the share of its values that the job asks for is true or false",
     "A few other values keep a yes-or-no field from being one.", "Correct the values that do not fit.",
     "the rule not isblank(`FIELD`) and fits(`FIELD`, 'READING'), with the reading that the profile shows"},
    {"values-that-do-not-fit", "Values that do not fit", "definite",
     "some values of a field that is nearly all numbers, dates or booleans are not read so",
     "These few values make the field a text: no sum, no order by size or time, no type at the next system.",
     "Look at each of them; most are missing values in words, or slips of the keyboard.", ""},
    {"ambiguous-readings", "Values that can be read in two ways", "likely",
     "the values fit two readings, and the column decides for neither",
     "01/02/2003 is a day in January or in February, and 1,234 more than a thousand or little more than one; nothing "
     "in the column says which.",
     "Ask the source, and state the form in the job (dates: day-first).", "an agreed form, stated in the job"},
    {"mixed-date-forms", "Dates in several forms", "likely", "dates of one field are written in more than one form",
     "The field is filled by several systems or people; one of the forms may be read wrongly elsewhere.",
     "Convert all dates to one form, best to ISO dates.", "an alert on the Pattern Count of the field"},
    {"zero-padded-numbers", "Numbers that begin with zeros", "definite",
     "at least 95 % of the rows have digits alone, and at least two values begin with 0",
     "They are codes, such as postal codes or account numbers: a system that reads them as numbers drops the zeros.",
     "Declare the field as text everywhere, in spreadsheets and imports too.",
     "an alert on the Minimum Length of the field"},
    {"type-differs-elsewhere", "Another type than in another table", "likely",
     "a field of this name, which is not a common one such as id, date or value, is read as a number, date, boolean or "
     "text in another table of the run, and this one is not",
     "Joins over the two fields fail or compare texts, and one of the tables is probably loaded wrongly.",
     "Give both fields one type.", "a rule with fits() in both tables"},
    {"pattern-differs-elsewhere", "Another pattern than in another table", "possible",
     "at least 95 % of the rows have one pattern, and at least 95 % of a field of this name, which is not a common one "
     "such as code, in another table have another one",
     "The same thing is written in two ways, so that joins find nothing.",
     "Convert one of the two before they are joined.", "a rule with matches() in both tables"},
    {"type-changed", "Another type than in the run before", "likely",
     "the values were all of one type in the run before and are of another one now",
     "The source has changed its format, or a value came that does not fit.",
     "Look at the values that are new (tavix compare), and ask the source.", "a rule with fits()"},
    {"decimals-lost", "Decimals lost since the run before", "likely",
     "a number field had decimal places in the run before and has none now",
     "The source now rounds, or a decimal mark is lost on the way; sums will differ.",
     "Compare a few rows with the source.", "an alert on the Precision of the field"},
};

} // namespace

std::span<const CatalogueEntry> catalogueOfTypes() {
    return kEntries;
}

} // namespace tavix::findings
