#include "findings/CatalogueParts.h"

namespace tavix::findings {

namespace {

constexpr CatalogueEntry kEntries[] = {
    {"placeholder-words", "Words for a missing value", "definite among numbers and dates, else likely",
     "a value is a word or sign such as N/A, unknown, null or -; none and na only among numbers and dates, and words "
     "of letters not among codes of one length",
     "Missing values are written as texts, so that the count of null is too low and the words count as values.",
     "Load these words as null.", ""},
    {"placeholder-characters", "One character over and over", "likely",
     "a value is one character, not a digit or Roman numeral, three times or more, in at most half of the rows and not "
     "among codes of one length",
     "Somebody had to fill a mandatory field, as with xxx or ???.", "Load them as null, and let the field be empty.",
     ""},
    {"placeholder-dates", "Dates for a missing value", "likely",
     "the first or last dates are days such as 1900-01-01, 1970-01-01 or 9999-12-31, three years or more from the next "
     "one",
     "A system writes such a day where the date is unknown or open, and it distorts every period and mean.",
     "Load them as null; keep 'open end' as a fact of its own.", ""},
    {"placeholder-numbers", "Numbers for a missing value", "likely",
     "the least or greatest number is -1 or all nines, occurs three times or more, and is far from the next one",
     "An older system writes such a number where the value is unknown, and it distorts sums and means.",
     "Load it as null.", ""},
    {"isolated-zeros", "Zeros far below all other numbers", "likely",
     "0.1 % to half of the rows are 0, and no other number is below a fifth of the median",
     "Zero is probably written for an unknown value, and it pulls the mean down.",
     "Ask whether 0 is possible; if not, load it as null.", ""},
    {"test-values", "Values typed for a test", "possible",
     "a value is test, asdf, qwerty, foo, foobar, dummy or lorem ipsum", "Records of a test are among the real ones.",
     "Look at the rows and delete them if they are.", ""},
    {"several-cases", "One value in several cases", "likely",
     "values differ in upper and lower case alone; in fields of at most 10,000 values with letters",
     "Groups and counts split one thing into several, and lookups miss some of them.",
     "Choose one spelling, and correct the field where it is entered.", ""},
    {"several-accents", "One value with and without accents", "possible",
     "values differ in accents alone; in fields of at most 10,000 values with letters",
     "Some source or keyboard lacks the accents, and one thing is counted twice.",
     "Choose one spelling, and compare with unaccent() until then.", ""},
    {"several-spellings", "One value in several spellings", "possible",
     "values without digits differ in punctuation, or in blanks between words of at least two letters, alone; in "
     "fields of at most 10,000 values with letters",
     "The same name was entered with and without a hyphen, point or blank, and is counted twice.",
     "Choose one spelling, and offer a list where the field is entered.", ""},
    {"mixed-codes", "Several codes for one meaning", "likely",
     "a field of at most 12 values has two of the words for yes, no, male or female, such as Y and Yes",
     "Sources with different codes were put together without translating them.", "Translate all to one set of codes.",
     ""},
    {"email-addresses", "E-mail addresses", "likely", "at least half of the rows are e-mail addresses",
     "These are personal data, with duties of protection and deletion.",
     "Check who may see the field, and mask it in copies for tests.", "access to the field, not a rule"},
    {"phone-numbers", "Phone numbers", "likely", "at least half of the rows have the form of a phone number",
     "These are probably personal data, with duties of protection and deletion.",
     "Check who may see the field, and mask it in copies for tests.", "access to the field, not a rule"},
    {"card-numbers", "Card numbers", "likely",
     "at least half of the rows have the form and the check digit of a payment card",
     "Card numbers must not be stored in the clear.", "Find out why they are here, and replace them by tokens.", ""},
    {"bank-accounts", "Bank accounts", "likely", "a value has the form and the check digits of an IBAN",
     "Account numbers of people are personal data, with duties of protection and deletion.",
     "Check who may see the field, and mask it in copies for tests.", "access to the field, not a rule"},
    {"national-ids", "National identity numbers", "likely",
     "at least half of the rows have the form of a number of social security (United States) or national insurance "
     "(United Kingdom)",
     "Identity numbers allow to impersonate somebody and are under special protection.",
     "Check whether they are needed here at all.", ""},
    {"ip-addresses", "IP addresses", "likely", "at least 90 % of the rows are IP addresses",
     "They identify a connection and count as personal data in many countries.", "Check how long they may be kept.",
     "access to the field, not a rule"},
    {"street-addresses", "Street addresses", "possible",
     "at least half of the rows have the form of an English street address", "Addresses of people are personal data.",
     "Check who may see the field.", "access to the field, not a rule"},
    {"emails-among-others", "E-mail addresses among other texts", "likely",
     "at most 10 % of the rows of a text field are e-mail addresses",
     "The addresses were entered into the wrong field, and personal data is where nobody expects it.",
     "Move them to the field where they belong.", ""},
    {"phones-among-others", "Phone numbers among other texts", "possible",
     "at most 10 % of the rows of a text field have the form of a phone number",
     "The numbers were entered into the wrong field.", "Move them to the field where they belong.", ""},
    {"urls-among-others", "Addresses of pages among other texts", "possible",
     "at most 10 % of the rows of a text field are addresses of pages",
     "The addresses were entered into the wrong field.", "Move them to the field where they belong.", ""},
    {"addresses-among-names", "Street addresses among names", "possible",
     "at most 10 % of the rows of a field with name in its name have the form of a street address",
     "The columns were shifted in some rows, or the address was entered into the wrong field.",
     "Look at the whole rows.", ""},
};

} // namespace

std::span<const CatalogueEntry> catalogueOfContents() {
    return kEntries;
}

} // namespace tavix::findings
