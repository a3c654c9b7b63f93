// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/session/Session.h"
#include "vesk/system/Array.h"

#include <initializer_list>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/// How the commands write values for people, and the station lists for both people and machines.
namespace VeskTool {

/// "0x" and the value.
std::string Hex(unsigned int value);
/// The bytes as pairs of digits with blanks between; "-" for none.
std::string HexBytes(System::IArray<unsigned char>& bytes);
/// A configuration's checksum as it stands in a database's description: eight digits.
std::string ChecksumText(unsigned int checksum);
/// "1.2.3".
std::string Version(std::initializer_list<unsigned int> parts);
/// "12.3 ms".
std::string Milliseconds(double milliseconds);
/// `text`, followed by blanks up to `width`.
std::string Padded(const std::string& text, std::size_t width);

/// Addresses with runs shortened: "3-5, 9"; "none" for none. `stations` is in ascending order.
std::string Addresses(const std::vector<int>& stations);
/// The station addresses that a 16-byte bit list names, ascending.
std::vector<int> ListedStations(System::IArray<unsigned char>& list);
/// The station addresses at which a live list shows a device, ascending.
std::vector<int> LiveStations(System::IArray<unsigned char>& liveList);

nlohmann::json StatesToJson(const std::vector<Session::Step>& steps);

} // namespace VeskTool
