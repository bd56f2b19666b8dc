// What Win32 tells of locales and ICU does not, or tells otherwise.
#pragma once

#include <string_view>

#include "platform/base.h"

namespace platform {

// The dialling code of a region, which Win32 takes for the number of a country. Sorted.
struct DiallingCode {
    std::string_view region;
    int code;
};
inline constexpr DiallingCode kDiallingCodes[] = {
    {"AD", 376}, {"AE", 971}, {"AF", 93},  {"AG", 1},   {"AI", 1},   {"AL", 355}, {"AM", 374}, {"AO", 244}, {"AQ", 672},
    {"AR", 54},  {"AS", 1},   {"AT", 43},  {"AU", 61},  {"AW", 297}, {"AX", 358}, {"AZ", 994}, {"BA", 387}, {"BB", 1},
    {"BD", 880}, {"BE", 32},  {"BF", 226}, {"BG", 359}, {"BH", 973}, {"BI", 257}, {"BJ", 229}, {"BL", 590}, {"BM", 1},
    {"BN", 673}, {"BO", 591}, {"BQ", 599}, {"BR", 55},  {"BS", 1},   {"BT", 975}, {"BW", 267}, {"BY", 375}, {"BZ", 501},
    {"CA", 1},   {"CC", 61},  {"CD", 243}, {"CF", 236}, {"CG", 242}, {"CH", 41},  {"CI", 225}, {"CK", 682}, {"CL", 56},
    {"CM", 237}, {"CN", 86},  {"CO", 57},  {"CR", 506}, {"CU", 53},  {"CV", 238}, {"CW", 599}, {"CX", 61},  {"CY", 357},
    {"CZ", 420}, {"DE", 49},  {"DJ", 253}, {"DK", 45},  {"DM", 1},   {"DO", 1},   {"DZ", 213}, {"EC", 593}, {"EE", 372},
    {"EG", 20},  {"EH", 212}, {"ER", 291}, {"ES", 34},  {"ET", 251}, {"FI", 358}, {"FJ", 679}, {"FK", 500}, {"FM", 691},
    {"FO", 298}, {"FR", 33},  {"GA", 241}, {"GB", 44},  {"GD", 1},   {"GE", 995}, {"GF", 594}, {"GG", 44},  {"GH", 233},
    {"GI", 350}, {"GL", 299}, {"GM", 220}, {"GN", 224}, {"GP", 590}, {"GQ", 240}, {"GR", 30},  {"GT", 502}, {"GU", 1},
    {"GW", 245}, {"GY", 592}, {"HK", 852}, {"HN", 504}, {"HR", 385}, {"HT", 509}, {"HU", 36},  {"ID", 62},  {"IE", 353},
    {"IL", 972}, {"IM", 44},  {"IN", 91},  {"IO", 246}, {"IQ", 964}, {"IR", 98},  {"IS", 354}, {"IT", 39},  {"JE", 44},
    {"JM", 1},   {"JO", 962}, {"JP", 81},  {"KE", 254}, {"KG", 996}, {"KH", 855}, {"KI", 686}, {"KM", 269}, {"KN", 1},
    {"KP", 850}, {"KR", 82},  {"KW", 965}, {"KY", 1},   {"KZ", 7},   {"LA", 856}, {"LB", 961}, {"LC", 1},   {"LI", 423},
    {"LK", 94},  {"LR", 231}, {"LS", 266}, {"LT", 370}, {"LU", 352}, {"LV", 371}, {"LY", 218}, {"MA", 212}, {"MC", 377},
    {"MD", 373}, {"ME", 382}, {"MF", 590}, {"MG", 261}, {"MH", 692}, {"MK", 389}, {"ML", 223}, {"MM", 95},  {"MN", 976},
    {"MO", 853}, {"MP", 1},   {"MQ", 596}, {"MR", 222}, {"MS", 1},   {"MT", 356}, {"MU", 230}, {"MV", 960}, {"MW", 265},
    {"MX", 52},  {"MY", 60},  {"MZ", 258}, {"NA", 264}, {"NC", 687}, {"NE", 227}, {"NF", 672}, {"NG", 234}, {"NI", 505},
    {"NL", 31},  {"NO", 47},  {"NP", 977}, {"NR", 674}, {"NU", 683}, {"NZ", 64},  {"OM", 968}, {"PA", 507}, {"PE", 51},
    {"PF", 689}, {"PG", 675}, {"PH", 63},  {"PK", 92},  {"PL", 48},  {"PM", 508}, {"PN", 64},  {"PR", 1},   {"PS", 970},
    {"PT", 351}, {"PW", 680}, {"PY", 595}, {"QA", 974}, {"RE", 262}, {"RO", 40},  {"RS", 381}, {"RU", 7},   {"RW", 250},
    {"SA", 966}, {"SB", 677}, {"SC", 248}, {"SD", 249}, {"SE", 46},  {"SG", 65},  {"SH", 290}, {"SI", 386}, {"SJ", 47},
    {"SK", 421}, {"SL", 232}, {"SM", 378}, {"SN", 221}, {"SO", 252}, {"SR", 597}, {"SS", 211}, {"ST", 239}, {"SV", 503},
    {"SX", 1},   {"SY", 963}, {"SZ", 268}, {"TC", 1},   {"TD", 235}, {"TG", 228}, {"TH", 66},  {"TJ", 992}, {"TK", 690},
    {"TL", 670}, {"TM", 993}, {"TN", 216}, {"TO", 676}, {"TR", 90},  {"TT", 1},   {"TV", 688}, {"TW", 886}, {"TZ", 255},
    {"UA", 380}, {"UG", 256}, {"US", 1},   {"UY", 598}, {"UZ", 998}, {"VA", 39},  {"VC", 1},   {"VE", 58},  {"VG", 1},
    {"VI", 1},   {"VN", 84},  {"VU", 678}, {"WF", 681}, {"WS", 685}, {"XK", 383}, {"YE", 967}, {"YT", 262}, {"ZA", 27},
    {"ZM", 260}, {"ZW", 263},
};

// Three letters that are not the language's code in ISO 639-2, or not in all of its regions. Sorted.
struct Abbreviation {
    LCID lcid;
    std::string_view letters;
};
inline constexpr Abbreviation kAbbreviations[] = {
    {0x0401, "ARA"}, {0x0402, "BGR"}, {0x0403, "CAT"}, {0x0404, "CHT"}, {0x0405, "CSY"}, {0x0406, "DAN"},
    {0x0407, "DEU"}, {0x0408, "ELL"}, {0x0409, "ENU"}, {0x040A, "ESP"}, {0x040B, "FIN"}, {0x040C, "FRA"},
    {0x040D, "HEB"}, {0x040E, "HUN"}, {0x040F, "ISL"}, {0x0410, "ITA"}, {0x0411, "JPN"}, {0x0412, "KOR"},
    {0x0413, "NLD"}, {0x0414, "NOR"}, {0x0415, "PLK"}, {0x0416, "PTB"}, {0x0418, "ROM"}, {0x0419, "RUS"},
    {0x041A, "HRV"}, {0x041B, "SKY"}, {0x041C, "SQI"}, {0x041D, "SVE"}, {0x041E, "THA"}, {0x041F, "TRK"},
    {0x0420, "URD"}, {0x0421, "IND"}, {0x0422, "UKR"}, {0x0423, "BEL"}, {0x0424, "SLV"}, {0x0425, "ETI"},
    {0x0426, "LVI"}, {0x0427, "LTH"}, {0x0429, "FAR"}, {0x042A, "VIT"}, {0x042B, "HYE"}, {0x042D, "EUQ"},
    {0x042F, "MKI"}, {0x0436, "AFK"}, {0x0437, "KAT"}, {0x0439, "HIN"}, {0x043E, "MSL"}, {0x043F, "KKZ"},
    {0x0441, "SWK"}, {0x0445, "BNG"}, {0x0456, "GLC"}, {0x0801, "ARI"}, {0x0804, "CHS"}, {0x0807, "DES"},
    {0x0809, "ENG"}, {0x080A, "ESM"}, {0x080C, "FRB"}, {0x0810, "ITS"}, {0x0813, "NLB"}, {0x0814, "NON"},
    {0x0816, "PTG"}, {0x081D, "SVF"}, {0x0C01, "ARE"}, {0x0C04, "ZHH"}, {0x0C07, "DEA"}, {0x0C09, "ENA"},
    {0x0C0A, "ESN"}, {0x0C0C, "FRC"}, {0x1001, "ARL"}, {0x1004, "ZHI"}, {0x1007, "DEL"}, {0x1009, "ENC"},
    {0x100A, "ESG"}, {0x100C, "FRS"}, {0x101A, "HRB"}, {0x1401, "ARG"}, {0x1404, "ZHM"}, {0x1407, "DEC"},
    {0x1409, "ENZ"}, {0x140A, "ESC"}, {0x140C, "FRL"}, {0x1801, "ARM"}, {0x1809, "ENI"}, {0x180A, "ESA"},
    {0x180C, "FRM"}, {0x1C01, "ART"}, {0x1C09, "ENS"}, {0x1C0A, "ESD"}, {0x2001, "ARO"}, {0x2009, "ENJ"},
    {0x200A, "ESV"}, {0x2401, "ARY"}, {0x2409, "ENB"}, {0x240A, "ESO"}, {0x241A, "SRM"}, {0x2801, "ARS"},
    {0x2809, "ENL"}, {0x280A, "ESR"}, {0x281A, "SRO"}, {0x2C01, "ARJ"}, {0x2C09, "ENT"}, {0x2C0A, "ESS"},
    {0x3001, "ARB"}, {0x3009, "ENW"}, {0x300A, "ESF"}, {0x3401, "ARK"}, {0x3409, "ENP"}, {0x340A, "ESL"},
    {0x3801, "ARU"}, {0x380A, "ESY"}, {0x3C01, "ARH"}, {0x3C0A, "ESZ"}, {0x4001, "ARQ"}, {0x4009, "ENN"},
    {0x400A, "ESB"}, {0x4409, "ENM"}, {0x440A, "ESE"}, {0x4809, "ENE"}, {0x480A, "ESH"}, {0x4C0A, "ESI"},
    {0x500A, "ESU"}, {0x540A, "EST"},
};

// Separators of one locale, or of a language in all its regions when no region's row comes first; null keeps ICU's.
struct Separators {
    LCID lcid;  // without a region: all of them
    const WCHAR* time;
    const WCHAR* list;
};
inline constexpr Separators kSeparators[] = {
    {0x0807, nullptr, W(";")},     // German (Switzerland): a decimal point, and yet a semicolon
    {0x0810, nullptr, W(";")},     // Italian (Switzerland)
    {0x01, nullptr, W(";")},       // Arabic
    {0x29, nullptr, W("\u061B")},  // Persian
    {0x06, W(":"), nullptr},       // Danish
};

}  // namespace platform
