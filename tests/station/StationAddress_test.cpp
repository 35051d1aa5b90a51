#include "station/StationAddress.h"

#include "platform/Settings.h"

#include "support/IsolatedUser.h"

#include <gtest/gtest.h>

namespace marvento {
namespace {

struct AddressCase {
  const char* text;
  StationProgram program;
  StationAddress::Status status;
  const char* host;
  std::uint16_t port;
  const char* written;  // what StationAddressText gives back
};

TEST(StationAddress, ParsesHostAndPortAndRefusesTheRest) {
  using P = StationProgram;
  constexpr auto Ok = StationAddress::Ok;
  constexpr auto Off = StationAddress::Off;
  constexpr auto Bad = StationAddress::Invalid;
  const AddressCase cases[] = {
      {"", P::Wsjtx, Off, "", 0, ""},
      {" 224.0.0.1:2237 ", P::Wsjtx, Ok, "224.0.0.1", 2237, "224.0.0.1:2237"},
      // A host alone takes the program's own port.
      {"127.0.0.1", P::Js8Call, Ok, "127.0.0.1", 2442, "127.0.0.1:2442"},
      {"shack-pi.local", P::Rotor, Ok, "shack-pi.local", 4533, "shack-pi.local:4533"},
      {"[::1]:2237", P::Wsjtx, Ok, "::1", 2237, "[::1]:2237"},
      {"::1", P::Js8Call, Ok, "::1", 2442, "[::1]:2442"},
      // WSJT-X's address is one to listen on: a name that needs a lookup is refused there.
      {"shack-pi:2237", P::Wsjtx, Bad, "", 0, ""},
      {"rotor:0", P::Rotor, Bad, "", 0, ""},
      {"rotor:65536", P::Rotor, Bad, "", 0, ""},
      {"rotor:+45", P::Rotor, Bad, "", 0, ""},
      {"rotor:", P::Rotor, Bad, "", 0, ""},
      {":4533", P::Rotor, Bad, "", 0, ""},
      {"ro tor:4533", P::Rotor, Bad, "", 0, ""},
      {"http://rotor:4533", P::Rotor, Bad, "", 0, ""},
      {"[::1:2237", P::Wsjtx, Bad, "", 0, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const QString text = QString::fromLatin1(c.text);
    const StationAddress address = ParseStationAddress(text, c.program);
    EXPECT_EQ(address.status, c.status);
    EXPECT_EQ(StationAddressProblem(text, c.program).isEmpty(), c.status != Bad);
    if (c.status != Ok) continue;
    EXPECT_EQ(address.host, QLatin1String(c.host));
    EXPECT_EQ(address.port, c.port);
    // Both written forms, host:port and [IPv6]:port, are among the forms read above.
    EXPECT_EQ(StationAddressText(address), QLatin1String(c.written));
  }
}

// Other tools and the user's own scripts read these keys: names and text form must hold.
TEST(StationAddressStore, KeysHoldHostPortTextAndEmptyMeansOff) {
  const test::IsolatedUser user;
  EXPECT_EQ(LoadStationAddress(StationProgram::Js8Call).status, StationAddress::Off);
  SaveStationAddress(StationProgram::Wsjtx,
                     ParseStationAddress(QStringLiteral("224.0.0.1:2237"), StationProgram::Wsjtx));
  SaveStationAddress(StationProgram::Rotor,
                     ParseStationAddress(QStringLiteral("::1"), StationProgram::Rotor));
  SaveStationAddress(StationProgram::Js8Call, StationAddress{});
  EXPECT_EQ(user.stored(QStringLiteral("Wsjtx")), QStringLiteral("224.0.0.1:2237"));
  EXPECT_EQ(user.stored(QStringLiteral("Rotor")), QStringLiteral("[::1]:4533"));
  EXPECT_EQ(user.stored(QStringLiteral("Js8Call")), QString());  // stored, and empty

  EXPECT_EQ(LoadStationAddress(StationProgram::Rotor).port, 4533);

  // A value edited in by hand that is no address switches the link off.
  SaveSetting(SettingKey::Wsjtx, QStringLiteral("wsjtx.example:99999"));
  EXPECT_EQ(LoadStationAddress(StationProgram::Wsjtx).status, StationAddress::Off);
}

}  // namespace
}  // namespace marvento
