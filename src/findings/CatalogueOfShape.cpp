#include "findings/CatalogueParts.h"

namespace tavix::findings {

namespace {

constexpr CatalogueEntry kEntries[] = {
    {"no-value", "No value at all", "definite", "every row is null, empty or blank",
     "The field is not filled, not delivered any more, or read from the wrong column.",
     "Ask whether it is still needed, and look at the run when it was last filled.",
     "an alert on the Percent Null of the field"},
    {"mostly-missing", "Nearly no values", "possible", "at least 95 % of at least 100 rows are null, empty or blank",
     "The field is optional and rarely used, or a delivery fails.", "Ask whether this share is right.",
     "an alert on the Percent Null of the field"},
    {"one-value", "One value only", "definite", "every row that is not null, empty or blank has the same value",
     "The field says nothing, or a filter or default hides the others.", "Ask whether other values should occur.",
     "an alert on the Unique Count of the field"},
    {"dominant-value", "One value nearly everywhere", "possible",
     "at least 98 % of at least 100 rows with a value have the same one",
     "A default is rarely changed, or the other values are exceptions that deserve a look.",
     "Look at the few other values.", "an alert on the Unique Count of the field"},
    {"rare-values", "Rare values beside few frequent ones", "possible",
     "of at most 30 texts in at least 1,000 rows, some occur in at most 0.1 % each, while those of at least 1 % each "
     "make 99.5 %",
     "A category has a few values that hardly occur: slips of the keyboard, old codes or tests.",
     "Check them against the list of valid values.", ""},
    {"nearly-unique", "Nearly unique values", "likely for keys with 99.9 % different values, else possible",
     "at least 99 % of at least 100 rows have different values of at most 60 characters, but not all; texts, and "
     "numbers whose name is that of a key",
     "A key has duplicates, or the same thing was entered twice.",
     "Compare the rows that share a value; merge them or correct the key.",
     "an alert on the Unique Percent of the field: min: 100"},
    {"identifier-gaps", "Gaps in a sequence of numbers", "possible",
     "integers that are all different leave out at most 5 % of the numbers between the least and the greatest",
     "Records were deleted, filtered out or not delivered.", "Ask the source for one of the missing numbers.",
     "an alert on the Count of the field"},
    {"rare-patterns", "Values of another pattern", "likely if 99.5 % have the usual pattern, else possible",
     "at least 98 % of the rows of a text field with at most 16 patterns have one pattern, and some another one",
     "Nearly all values are codes of one form, and these are not: slips of the keyboard, other kinds of codes, or "
     "shifted columns.",
     "Check them against the definition of the code.", ""},
    {"odd-lengths", "Values of another length", "likely",
     "at least 99 % of the rows and values of a text field have the same length of at least 4 characters, and some "
     "have another one",
     "An identifier lost or gained characters on its way.", "Compare the values with the source.", ""},
    {"cut-off-texts", "Texts that are probably cut off",
     "likely if the length is a usual width of a column, else possible",
     "at least 5 values, and three times as many as of any of the three lengths below, have exactly the greatest "
     "length of at least 10",
     "A column or an export is too narrow for the longest texts, and their ends are missing.",
     "Compare a few of them with the source, and widen the column.", ""},
    {"damaged-rows", "Damaged rows", "definite",
     "the source has rows with too few or too many cells or with invalid bytes",
     "Cells of these rows are missing or in the wrong column, which shows in every other figure.",
     "Look at the list of damaged rows, and repair how the file is written.",
     "the execution log of each run, which lists them"},
};

} // namespace

std::span<const CatalogueEntry> catalogueOfShape() {
    return kEntries;
}

} // namespace tavix::findings
