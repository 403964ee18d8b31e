// Settings texts of serial ports.
#include "platform/serial_port.h"

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "golden_table.h"

namespace {

using zr::platform::ParsePortText;
using zr::platform::PortSettings;

// All fields in one line, in the order of the table's columns.
std::string Line(const PortSettings &s) {
    std::string line;
    for (const std::uint32_t value :
         {s.baud_rate, std::uint32_t{s.data_bits}, std::uint32_t{s.parity}, std::uint32_t{s.stop_bits},
          std::uint32_t{s.cts_flow}, std::uint32_t{s.dsr_flow}, std::uint32_t{s.dtr}, std::uint32_t{s.dsr_sensitive},
          std::uint32_t{s.xon_output}, std::uint32_t{s.xon_input}, std::uint32_t{s.rts}})
        line += (line.empty() ? "" : " ") + std::to_string(value);
    return line;
}

PortSettings Filled(bool ones) {
    PortSettings settings;
    if (!ones)
        return settings;
    settings.baud_rate = 0xFFFFFFFF;
    settings.data_bits = settings.parity = settings.stop_bits = 255;
    settings.rts = settings.dtr = 3;
    settings.cts_flow = settings.dsr_flow = settings.dsr_sensitive = settings.xon_output = settings.xon_input = true;
    return settings;
}

// The settings that a text makes of none, or "malformed" when it leaves them alone.
std::string Parsed(const std::string &text) {
    PortSettings settings;
    if (ParsePortText(text.c_str(), settings))
        return Line(settings);
    EXPECT_EQ(Line(settings), Line(PortSettings())) << text;
    return "malformed";
}

constexpr const char *plain = "9600 8 0 0 0 0 1 0 0 0 1";
constexpr const char *hardware = "9600 8 0 0 1 1 2 0 0 0 2";
constexpr const char *software = "9600 8 0 0 0 0 1 0 1 1 1";
constexpr const char *nothing = "0 0 0 0 0 0 0 0 0 0 0";
constexpr const char *malformed = "malformed";

TEST(PortText, MeasuredTextsGiveTheirSettings) {
    const GoldenTable table("win_buildcommdcb.tsv");
    for (GoldenTable::Row row : table.Rows()) {
        const std::string documented = row["windows_documented"];
        if (documented.rfind("documented keywords", 0) == 0)
            continue; // DocumentedLines_AreAccepted
        if (documented.rfind("BaudRate ", 0) == 0)
            row["BaudRate"] = std::to_string(std::stoi(documented.substr(9)));
        PortSettings settings = Filled(row["prefill"] == "0xFF");
        const std::string before = Line(settings);
        EXPECT_EQ(ParsePortText(row["text"].c_str(), settings), row["ret"] == "1") << row["text"];
        std::string wanted;
        for (const char *column : {"BaudRate", "ByteSize", "Parity", "StopBits", "fOutxCtsFlow", "fOutxDsrFlow",
                                   "fDtrControl", "fDsrSensitivity", "fOutX", "fInX", "fRtsControl"})
            wanted += (wanted.empty() ? "" : " ") + row[column];
        EXPECT_EQ(Line(settings), row["ret"] == "1" ? wanted : before) << row["text"] << " " << row["prefill"];
    }
}

TEST(PortText, DocumentedLines_AreAccepted) {
    EXPECT_EQ(Parsed("dtr=hs"), "0 0 0 0 0 0 2 0 0 0 0");
    EXPECT_EQ(Parsed("rts=hs"), "0 0 0 0 0 0 0 0 0 0 2");
    EXPECT_EQ(Parsed("rts=tg"), "0 0 0 0 0 0 0 0 0 0 3");
    EXPECT_EQ(Parsed("baud=9600 parity=n data=8 stop=1 xon=on octs=on rts=hs dtr=off"), "9600 8 0 0 1 0 0 0 1 1 2");
    EXPECT_EQ(Parsed("dtr=tg"), malformed);
}

TEST(PortText, ShortRates_AreMeantInBothForms) {
    const char *rates[][2] = {{"11", "110"},   {"15", "150"},    {"30", "300"},        {"60", "600"},
                              {"12", "1200"},  {"24", "2400"},   {"48", "4800"},       {"96", "9600"},
                              {"19", "19200"}, {"00011", "110"}, {"192", "192"},       {"0", "0"},
                              {"1", "1"},      {"110", "110"},   {"921600", "921600"}, {"99999999999", "4294967295"}};
    for (const auto &[given, meant] : rates) {
        EXPECT_EQ(Parsed(std::string(given) + ",n,8,1"), std::string(meant) + " 8 0 0 0 0 1 0 0 0 1");
        EXPECT_EQ(Parsed("baud=" + std::string(given) + " stop=1"), std::string(meant) + " 0 0 0 0 0 0 0 0 0 0");
    }
}

TEST(PortText, Port_MayStandInFront) {
    for (const char *port : {"COM1:", "COM1 ", "com12: ", "Com999  :  ", "COM1 : ", "COM99999999999:", ""})
        EXPECT_EQ(Parsed(port + std::string("9600,n,8,1,p")), hardware) << port;
    for (const char *port : {"COM:", "COM0:", "COM01:", "COM1x:", "COM 1:", " COM1:", "LPT1:", "COM1::", "COM1: :",
                             "COM1:COM1:", "COM1:\t", "/dev/ttyS0:", " ", "COM1"})
        EXPECT_EQ(Parsed(port + std::string("9600,n,8,1,p")), malformed) << port;
    EXPECT_EQ(Parsed("COM1:  baud=9600"), "9600 0 0 0 0 0 0 0 0 0 0");
    EXPECT_EQ(Parsed("COM1 baud=9600"), "9600 0 0 0 0 0 0 0 0 0 0");
    EXPECT_EQ(Parsed("COM1baud=9600"), malformed);
}

TEST(PortText, TextWithoutSettings_SetsNothing) {
    for (const char *text : {"", "COM1:", "COM1 ", "COM1: ", "COM1:   "})
        EXPECT_EQ(Parsed(text), nothing) << text;
    for (const char *text : {"COM", "COM1", " ", "COM1::", ",", ",,,,", "com2 com3"})
        EXPECT_EQ(Parsed(text), malformed) << text;
}

TEST(PortText, BlanksAroundFields_DoNotCount) {
    EXPECT_EQ(Parsed("COM1: 9600 , n , 8 , 1 , p "), hardware);
    EXPECT_EQ(Parsed("COM1:9600,n,8,1  "), plain);
    EXPECT_EQ(Parsed("9600,n,8,1,x   "), software);
    for (const char *text : {"9600,\tn,8,1", "9600,n,8,1 p", "9600,n,8,1 .5", " 9600,n,8,1", "9600,n,8,1,p x"})
        EXPECT_EQ(Parsed(text), malformed) << text;
}

TEST(PortText, Handshake_MayBeEmpty) {
    EXPECT_EQ(Parsed("9600,n,8,1"), plain);
    EXPECT_EQ(Parsed("9600,n,8,1,"), plain);
    EXPECT_EQ(Parsed("9600,n,8,1  ,  "), plain);
    for (const char *text : {"9600,n,8,1,,", "9600,n,8,1,e", "9600,n,8,1,px", "9600,n,8,1,p,", "9600,n,8,1,n"})
        EXPECT_EQ(Parsed(text), malformed) << text;
}

TEST(PortText, FieldsThatAreMissingOrWrong_AreMalformed) {
    for (const char *text :
         {"9600",          "9600,",        "9600,n",      "9600,n,",     "9600,n,8",    "9600,n,8,",   "n,8,1",
          ",n,8,1",        "9600,,8,1",    "9600,n,,1",   "+9600,n,8,1", "-9600,n,8,1", "9600,q,8,1",  "9600,nn,8,1",
          "9600,n,4,1",    "9600,n,9,1",   "9600,n,88,1", "9600,n,8,0",  "9600,n,8,3",  "9600,n,8,11", "9600,n,8,1.",
          "9600,n,8,1.50", "9600,n,8,2.0", "9600n,8,1",   "9600,n8,1"})
        EXPECT_EQ(Parsed(text), malformed) << text;
    EXPECT_EQ(Parsed("9600,s,08,01.5,P"), "9600 8 4 1 1 1 2 0 0 0 2");
}

TEST(PortText, NamedSettings_ArePartedByBlanks) {
    EXPECT_EQ(Parsed("baud=9600  Parity=E DATA=7 stop=1.5"), "9600 7 2 1 0 0 0 0 0 0 0");
    EXPECT_EQ(Parsed("xon=on octs=on odsr=on dtr=on rts=on idsr=on to=on"), "0 0 0 0 1 1 1 1 1 1 1");
    EXPECT_EQ(Parsed("xon=on xon=off baud=300 baud=600"), "600 0 0 0 0 0 0 0 0 0 0");
    for (const char *text : {" baud=9600",
                             "baud=9600 ",
                             "baud=9600;parity=n",
                             "baud=9600parity=n",
                             "baud = 9600",
                             "baud= 9600",
                             "baud=",
                             "baud",
                             "baud=x",
                             "baud=12x",
                             "baud=-1",
                             "parity=",
                             "parity=none",
                             "data=4",
                             "data=16",
                             "stop=3",
                             "stop=1.",
                             "xon=",
                             "xon=1",
                             "xon=on1",
                             "to=x",
                             "odsr=hs",
                             "rts=x",
                             "retry=b",
                             "foo=on",
                             "b=9600",
                             "baud=9600 x",
                             "xon=on,",
                             "baud=300 9600,n,8,1"})
        EXPECT_EQ(Parsed(text), malformed) << text;
}

TEST(PortText, Baud110WithoutStop_HasTwoStopBits) {
    EXPECT_EQ(Parsed("baud=110"), "110 0 0 2 0 0 0 0 0 0 0");
    EXPECT_EQ(Parsed("stop=1 baud=110"), "110 0 0 0 0 0 0 0 0 0 0");
    EXPECT_EQ(Parsed("baud=110 stop=1.5"), "110 0 0 1 0 0 0 0 0 0 0");
    PortSettings settings;
    settings.baud_rate = 110;
    settings.stop_bits = 1;
    EXPECT_TRUE(ParsePortText("COM1:", settings));
    EXPECT_EQ(Line(settings), "110 0 0 0 0 0 0 0 0 0 0"); // a rate that was there before doesn't count
    EXPECT_EQ(Parsed("110,n,8,1"), "110 8 0 0 0 0 1 0 0 0 1");
}

} // namespace
