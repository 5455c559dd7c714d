#pragma once

#include "platform/page.h"

#include <string>
#include <string_view>

namespace kestrune {

// The origin that an address speaks for, as "http://host" or "https://host:81": letters lower-cased, a
// default port and a user's name left out. "" for an address that is no full http or https address.
std::string origin_of_address(std::string_view address);

// Whose document it is: what the engine says, or where it says nothing of use ("null", ""), what the address
// says. "" for a document that is of no site.
std::string origin_of(const PageDocument& document);

// Whether the document, in a frame of the page, may take a record's values and add to them. A page's frames
// are often advertisers' and other strangers': one of another origin than the page is passed over, however
// much its form looks like the recorded one, unless the record was sent to that very origin.
bool shares_records(const PageDocument& frame, const PageDocument& page, std::string_view recordAction);

} // namespace kestrune
