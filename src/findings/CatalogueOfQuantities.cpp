#include "findings/CatalogueParts.h"

namespace tavix::findings {

namespace {

constexpr CatalogueEntry kEntries[] = {
    {"dates-in-the-future", "Dates in the future", "likely if more than 5 years ahead, else possible",
     "a date is after the moment of the run, in at most 20 % of the rows",
     "A date of something that has happened cannot be after today: day and month or the century were mixed up, or it "
     "is a plan.",
     "Check the farthest ones first.", ""},
    {"dates-before-1900", "Dates before 1900", "likely", "a date is before 1900, in at most 5 % of the rows",
     "The century was lost, a year has a typing error, or a system writes such a date for a missing one.",
     "Compare them with the source.", ""},
    {"no-recent-dates", "No recent dates", "likely if the run before had the same last date, else possible",
     "the last of at least 30 days is at least a week and at most a year before the run, and 20 times as long ago as "
     "dates usually were apart; or the last date has not changed since the run before",
     "The table is not delivered any more, or the run reads an old copy.", "Ask when the source was last updated.",
     "an alert on the Count of the field: change"},
    {"missing-days", "Missing days", "possible",
     "the dates are on at least 60 and at least 95 %, but not all, of the days between the first and the last one",
     "A daily delivery failed on these days.", "Load the missing days again.", "a custom metric that counts the days"},
    {"missing-months", "Missing months", "possible",
     "the dates are in at least 24 and at least 95 %, but not all, of the months between the first and the last one",
     "A monthly delivery failed, or a part of the history was not loaded.", "Load the missing months again.",
     "a custom metric that counts the months"},
    {"first-of-january", "Many dates on the first of January", "likely",
     "at least 3 % of the rows, and 10, are on the first of January, in a field of 200 different days of the year",
     "Only the year was known, and a system completed the date.",
     "Keep how exact a date is, and do not count by month or weekday with these.", ""},
    {"dates-without-time", "Dates without a time among times", "likely",
     "at least 3 % of the rows, and 10, are at midnight, in a field of 200 different minutes of the day",
     "Some source delivers days only, and they are taken for midnight.",
     "Ask the source; leave them out where the time of day matters.", ""},
    {"far-outliers", "Numbers far beyond all others", "likely",
     "up to 5 numbers at an end lie beyond 10 times the interquartile range, and 5 times as far from the median as the "
     "next one, in at most 1 % of the rows",
     "A decimal mark, a unit or a digit is wrong, and these rows dominate sums and means.",
     "Compare them with the source.", ""},
    {"negative-numbers", "A few negative numbers", "likely",
     "at most 1 % of the rows are below zero, and the least is beyond the lower fence of 1.5",
     "A quantity that is never negative has a wrong sign, or corrections are among the entries.",
     "Look at the rows; if they are corrections, keep their kind in a field.", ""},
    {"round-numbers", "Many round numbers", "possible",
     "half to 95 % of the integers other than 0 are multiples of ten, with at least 50 values and a median of at least "
     "20",
     "The numbers are estimates, not measurements or counts.", "Do not read more precision into them than they have.",
     "a custom metric that counts them"},
};

} // namespace

std::span<const CatalogueEntry> catalogueOfQuantities() {
    return kEntries;
}

} // namespace tavix::findings
