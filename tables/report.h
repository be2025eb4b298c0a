// The measured properties of the widening filters and room responses as text.
#pragma once

#include <ostream>

#include "tables/quality.h"

namespace zoq::tables {

void report_widening(std::ostream& out, Bins sameSide, Bins crossFeed, const Head& head);
void report_rooms(std::ostream& out, const RoomTables& rooms, const Head& head);

}  // namespace zoq::tables
