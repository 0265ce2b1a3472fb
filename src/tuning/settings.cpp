#include "tuning/settings.h"

#include <iterator>

#include "util/product.h"

namespace zandrel {
namespace {

// The design state of the settings pages. A run of fields is numbered first to last and lies at offsets
// from..to (from 1) with the step given; the compiler checks that the two counts agree.
// clang-format off
struct FrameRow { int Frame, Tab; const char* Caption; const char* Tag; };
struct TextRun { int Frame, First, Last, From, To, Step; const char* Block; int Size; const char *Scale, *Offset, *Format; };
struct CheckRun { int Frame, First, Last, From, To, Step; const char *Block, *Polarity; };
struct StringRun { int Frame, First, Last, From, To, Step; const char *Block, *Length; };
struct TagRow { int Frame, Index; const char* Tag; };
struct BitRow { int Frame, Index; const char *Tag, *Caption; };
struct CurveRow { int Frame, Index; const char *Caption, *Tag; };
struct LabelRow { int Frame; std::initializer_list<const char*> Captions; };

constexpr FrameRow kFrames[] = {
    // frame tab  caption, block list
    { 120,  6, "Rev / Idle", "&HB8"},
    {1140,  6, "Function Select", "&HD6"},
    { 140,  6, "Function Select", "&HD6"},
    { 100,  6, "Boost Control", "&HAB,&HD5"},
    {1100,  6, "Boost Control", "&H5C"},
    {2100,  6, "Boost Control", "&HAB"},
    {1120,  6, "Rev / Idle", "&HB8"},
    { 180,  6, "Protect", "&HAC"},
    { 160,  6, "Knock Warn", "&HA9"},
    { 170,  6, "O2 Feedback", "&HAA"},
    { 150,  6, "Injector Warn", "&HA8"},
    { 130,  6, "Turbo  Transition", "&H7D"},
    { 190,  6, "Version", "&HF3,&HF5"},
    { 155,  6, "Air-Flow Warn", "&HA7,4"},
    {1180,  6, "Protect", "&HAC"},
    { 280,  7, "INJ vs Air Temp and Boost (max)", "&H91"},
    { 290,  7, "INJ vs Water Temp and Boost (max)", "&H90"},
    { 270,  7, "Inj vs AirTemp", "&HB9"},
    { 256,  7, "INJ vs TPS", "&HBA"},
    {1215,  7, "Accelerate Injector (mS)", "&H5D"},
    { 215,  7, "Accelerate Injector (mS)", "&H93"},
    { 200,  7, "Water Temp Correction", "&H8F"},
    { 240,  7, "Inj vs Accel TPS1", "&H94"},
    { 230,  7, "Cranking (mS)", "&H8E"},
    { 250,  7, "INJ vs Fuel Temp", "&H7C"},
    { 350,  8, "Inj Adjust", "&HCB"},
    { 370,  8, "Air Flow Curves", "&HA0,&HA1,&HA2,&HA3,&HA4,&HA5"},
    { 340,  8, "PIM scale, offset", "&HCB,&HBC"},
    {1340,  8, "Air Flow", "&HCE"},
    {2300,  8, "Map Ref Base VT1", "&H61"},
    {1300,  8, "Map Ref Base VT0", "&H60"},
    { 300,  8, "Map Reference", "&H8A"},
    { 390,  8, "Fan vs Water Temp", "&H7F"},
    { 380,  8, "Oiler vs Water Temp", "&H7E"},
    { 470,  9, "IGN vs TPS", "&HBB"},
    { 430,  9, "IGN Dwell vs RPM", "&H9B"},
    {1470,  9, "IGN vs TPS", "&H99"},
    { 400,  9, "IGN vs WaterT", "&H98"},
    {1410,  9, "IGN vs WaterT Cool", "&H96"},
    { 460,  9, "Boost vs IGN S.F.", "&H97"},
    { 450,  9, "IGN vs AirT", "&H9A"},
    { 420,  9, "IGN vs BatV", "&H9C"},
    { 440,  9, "IGT Dwell vs RPM", "&H9E"},
    { 480,  9, "Boost vs IGN S.F.", "&H9D"},
    { 410,  9, "IGN vs WaterT Cool", "&H96"},
    { 500, 10, "Injectors", "&H8D"},
    { 520, 10, "Inj Lag (mS) vs BatV", "&H92"},
    { 560, 10, "Notes", ""},
    { 550, 10, "Corvane Custom Features (Key Off / Key On for changes to take effect)", ""},
    { 530, 10, "InjSc Lag (mS) vs BatV", "&H9F"},
    { 540, 10, "Injector Overlap", "&H7B"},
    {1500, 10, "Injectors", "&H8D"},
    { 600, 11, "Shift Up", "&H40"},
    { 630, 11, "Shift Down", "&H41"},
    { 660, 11, "Full Lock-Up Zone", "&H42"},
    { 680, 11, "Flex Lock-Up Zone", "&H43"},
    { 700, 11, "TPS vs ATF line pressure", "&H44"},
};

constexpr TextRun kTexts[] = {
    // frame first  last  offset..last step  block   size scale  bias  format
    { 120,  120,  127,  1, 15, 2, "&HB8",   2, "1", "0", "0"},
    {1120, 1120, 1128,  1, 17, 2, "&HB8",   2, "1", "0", "0"},
    { 100,  100,  103,  4,  7, 1, "&HAB",   1, "0.05", "0", "0.00"},
    { 100,  104,  107,  8, 11, 1, "&HAB",   1, "1", "0", "0"},
    { 100,  108,  111,  6,  9, 1, "&HD5",   1, "1", "0", "0"},
    {1100, 1100, 1103,  2,  5, 1, "&H5C",   1, "0.05", "0", "0.00"},
    {1100, 1104, 1107, 10, 13, 1, "&H5C",   1, "1", "0", "0"},
    {1100, 1108, 1111,  6,  9, 1, "&H5C",   1, "1", "0", "0"},
    {2100, 2100, 2103,  4,  7, 1, "&HAB",   1, "0.05", "0", "0.00"},
    {2100, 2104, 2107,  8, 11, 1, "&HAB",   1, "1", "0", "0"},
    { 130,  130,  132,  1,  3, 1, "&H7D",   1, "0.01953125", "0", "0.000"},
    { 130,  133,  138,  4,  9, 1, "&H7D",   1, "40", "0", "0"},
    { 150,  150,  150,  2,  2, 1, "&HA8",   2, "0.1", "0", "0.0"},
    { 150,  151,  151,  4,  4, 1, "&HA8",   1, "1", "0", "0"},
    { 155,  155,  155,  2,  2, 1, "&HA7",   2, "0.005", "0", "0.000"},
    { 155,  156,  156,  4,  4, 1, "&HA7",   1, "1", "0", "0"},
    { 160,  160,  160,  2,  2, 1, "&HA9",   2, "1", "0", "0"},
    { 160,  161,  161,  4,  4, 1, "&HA9",   1, "1", "0", "0"},
    { 170,  170,  170,  2,  2, 1, "&HAA",   2, "0.00390625", "0", "0.000"},
    { 200,  200,  211,  1, 12, 1, "&H8F",   1, "0.015625", "0", "0.000"},
    { 200,  212,  213, 13, 14, 1, "&H8F",   1, "256", "0", "0"},
    { 215,  215,  219,  1,  5, 1, "&H93",   1, "40", "0", "0"},
    { 215,  220,  229,  6, 24, 2, "&H93",   2, "0.004", "0", "0.000"},
    {1215, 1215, 1224,  1, 19, 2, "&H5D",   2, "0.004", "0", "0.000"},
    { 230,  230,  235,  1, 11, 2, "&H8E",   2, "0.004", "0", "0.0"},
    { 240,  240,  242,  1,  7, 3, "&H94",   1, "0.0048828125", "0", "0.000"},
    { 240,  243,  245,  2,  8, 3, "&H94",   2, "0.00390625", "0", "0.00"},
    { 250,  250,  252,  1,  7, 3, "&H7C",   1, "1", "-80", "0"},
    { 250,  253,  255,  2,  8, 3, "&H7C",   2, "0.00390625", "0", "0.000"},
    { 256,  256,  261,  1, 11, 2, "&HBA",   1, "0.01953125", "0", "0.000"},
    { 256,  262,  267,  2, 12, 2, "&HBA",   1, "0.0078125", "0", "0.000"},
    { 270,  270,  275,  1, 11, 2, "&HB9",   2, "0.00390625", "0", "0.000"},
    { 280,  280,  282,  1,  5, 2, "&H91",   1, "1", "-80", "0"},
    { 280,  283,  285,  2,  6, 2, "&H91",   1, "0.0078125", "0", "0.000"},
    { 280,  286,  287,  7,  8, 1, "&H91",   1, "256", "0", "0"},
    { 290,  290,  291,  1,  3, 2, "&H90",   1, "1", "-80", "0"},
    { 290,  292,  293,  2,  4, 2, "&H90",   1, "0.0078125", "0", "0.000"},
    { 290,  294,  295,  5,  6, 1, "&H90",   1, "256", "0", "0"},
    { 300,  300,  339,  1, 79, 2, "&H8A",   2, "1", "0", "0"},
    {1300, 1300, 1339,  1, 79, 2, "&H60",   2, "1", "0", "0"},
    {2300, 2300, 2339,  1, 79, 2, "&H61",   2, "1", "0", "0"},
    { 340,  340,  344,  1, 17, 4, "&HBC",   2, "0.15", "0", "0"},
    { 340,  345,  349,  3, 19, 4, "&HBC",   2, "1", "0", "0"},
    { 350,  350,  365, 92, 107, 1, "&HCB",   1, "0.390625", "50", "0.0"},
    {1340, 1340, 1347, 92, 106, 2, "&HCE",   2, "0.1", "0", "0.0"},
    { 380,  380,  382,  1,  5, 2, "&H7E",   1, "1", "-80", "0"},
    { 380,  383,  385,  2,  6, 2, "&H7E",   1, "0.0078125", "0", "0.000"},
    { 390,  390,  392,  1,  3, 1, "&H7F",   1, "1", "-80", "0"},
    { 400,  400,  401,  1,  3, 2, "&H98",   1, "1", "-80", "0"},
    { 400,  402,  403,  2,  4, 2, "&H98",   1, "1", "0", "0"},
    { 410,  410,  413,  1,  4, 1, "&H96",   1, "1", "0", "0"},
    {1410, 1410, 1411,  1,  3, 2, "&H96",   1, "1", "-80", "0"},
    {1410, 1412, 1413,  2,  4, 2, "&H96",   1, "1", "0", "0"},
    { 420,  420,  425,  1,  6, 1, "&H9C",   1, "0.015625", "0", "0.000"},
    { 430,  430,  435,  1,  6, 1, "&H9B",   1, "1", "0", "0"},
    { 440,  440,  445,  1,  6, 1, "&H9E",   1, "1", "0", "0"},
    { 450,  450,  452,  1,  5, 2, "&H9A",   1, "1", "-80", "0"},
    { 450,  453,  455,  2,  6, 2, "&H9A",   1, "1", "0", "0"},
    { 460,  460,  461,  1,  2, 1, "&H97",   1, "256", "0", "0"},
    { 470,  470,  473,  1,  7, 2, "&HBB",   1, "0.01953125", "0", "0.000"},
    { 470,  474,  477,  2,  8, 2, "&HBB",   1, "1", "-128", "0"},
    {1470, 1470, 1473,  1,  7, 2, "&H99",   1, "0.01953125", "0", "0.000"},
    {1470, 1474, 1477,  2,  8, 2, "&H99",   1, "1", "0", "0"},
    { 480,  480,  481,  1,  2, 1, "&H9D",   1, "4", "0", "0"},
    { 480,  482,  483,  3,  4, 1, "&H9D",   1, "256", "0", "0"},
    { 500,  500,  505,  1, 11, 2, "&H8D",   2, "0.0030517578125", "0", "0.0"},
    { 500,  506,  511, 13, 23, 2, "&H8D",   2, "0.004", "-131.072", "0.00"},
    {1500, 1500, 1501,  1,  3, 2, "&H8D",   2, "0.0030517578125", "0", "0.0"},
    {1500, 1502, 1503, 13, 15, 2, "&H8D",   2, "1", "0", "0"},
    {1500, 1504, 1507,  5, 11, 2, "&H8D",   2, "0.004", "-131.072", "0.00"},
    {1500, 1508, 1508, 17, 17, 1, "&H8D",   2, "0.1", "0", "0.0"},
    {1500, 1509, 1509, 19, 19, 1, "&H8D",   2, "0.004", "0", "0.000"},
    { 520,  520,  525,  1, 11, 2, "&H92",   2, ".004", "0", "0.000"},
    { 530,  530,  535,  1, 11, 2, "&H9F",   2, "0.004", "0", "0.000"},
    { 540,  540,  542,  1,  5, 2, "&H7B",   1, "256", "0", "0"},
    { 540,  543,  545,  2,  6, 2, "&H7B",   1, "1", "0", "0"},
    { 550,  550,  550,  2,  2, 1, "&HAD", 129, "-1", "0", "0"},
    { 550,  551,  551,  3,  3, 1, "&HAD",   1, "0.00390625", "0.5", "0.00"},
    { 600,  600,  623,  1, 24, 1, "&H40",   1, "1", "0", "0"},
    { 630,  630,  653,  1, 24, 1, "&H41",   1, "1", "0", "0"},
    { 660,  660,  671,  1, 12, 1, "&H42",   1, "1", "0", "0"},
    { 680,  680,  691,  1, 12, 1, "&H43",   1, "1", "0", "0"},
    { 700,  700,  700,  1,  1, 1, "&H44",   1, "1", "0", "0"},
    { 700,  701,  701,  2,  2, 1, "&H44",   2, "1", "0", "0"},
    { 700,  702,  702,  4,  4, 1, "&H44",   1, "1", "0", "0"},
    { 700,  703,  703,  5,  5, 1, "&H44",   2, "1", "0", "0"},
    { 700,  704,  704,  7,  7, 1, "&H44",   1, "1", "0", "0"},
    { 700,  705,  705,  8,  8, 1, "&H44",   2, "1", "0", "0"},
};

constexpr CheckRun kChecks[] = {
    // frame first  last  offset..last step  block  polarity
    { 140,  140,  144,  1,  5, 1, "&HD6", "0"},
    {1140, 1140, 1147,  1,  8, 1, "&HD6", "0"},
    { 180,  180,  189,  1, 10, 1, "&HAC", "255"},
    {1180, 1180, 1193,  1, 14, 1, "&HAC", "255"},
};

constexpr StringRun kStrings[] = {
    // frame first  last  offset..last step  block  length
    { 140,  140,  144,  6,  70, 16, "&HD6", "16"},
    {1140, 1140, 1147,  9, 121, 16, "&HD6", "16"},
    { 190,  190,  190,  1,   1,  1, "&HF3", "8"},
    { 190,  191,  191,  1,   1,  1, "&HF5", "5"},
    { 340,  340,  344,  2,  74, 18, "&HCB", "18"},
    {1340, 1340, 1344,  2,  74, 18, "&HCE", "18"},
    { 550,  550,  550,  1,   1,  1, "&HAD", "8"},
};

constexpr TagRow kOptions[] = {
    // frame index, descriptor
    { 100,  100, "&HAB,3,0,3"},
    { 100,  101, "&HAB,3,1,3"},
    { 100,  102, "&HAB,3,2,3"},
    { 100,  103, "&HAB,3,3,3"},
    {1100, 1100, "&H5C,1,0,3"},
    {1100, 1101, "&H5C,1,1,3"},
    {1100, 1102, "&H5C,1,2,3"},
    {1100, 1103, "&H5C,1,3,3"},
    {2100, 2100, "&HAB,3,0,2"},
    {2100, 2101, "&HAB,3,2,2"},
    { 340,  340, "&HCB,1,0,7"},
    { 340,  341, "&HCB,1,1,7"},
    { 340,  342, "&HCB,1,2,7"},
    { 340,  343, "&HCB,1,3,7"},
    { 340,  344, "&HCB,1,4,7"},
    {1340, 1340, "&HCE,1,0,7"},
    {1340, 1341, "&HCE,1,1,7"},
    {1340, 1342, "&HCE,1,2,7"},
    {1340, 1343, "&HCE,1,3,7"},
    {1340, 1344, "&HCE,1,4,7"},
};

constexpr BitRow kBits[] = {
    { 550, 550, "&HAD,1,128", "Enabled"},
    { 550, 551, "&HAD,1,1", "Boost Switch (SW4/AN8)"},
    { 550, 552, "&HAD,1,2", "Anti Lag Switch (SW3) *"},
    { 550, 553, "&HAD,1,4", "AN5-8 Switch to ground (Internal 5V pullups) *"},
};

constexpr CurveRow kCurves[] = {
    // frame index, button, curve text
    { 130,  130, "Low", "3;&H7D,3,-1,1,0.390625,0,0;&H7D,6,-1,1,40,0,0"},
    { 130,  131, "High", "3;&H7D,3,-1,1,0.390625,0,0;&H7D,9,-1,1,40,0,0"},
    { 200,  200, "Curve 1", "6;Const,,,,,,0,-30,-10,10,30,50,80;&H8F,6,-1,1,0.015625,0,0.000"},
    { 200,  201, "Curve 2", "6;Const,,,,,,0,-30,-10,10,30,50,80;&H8F,12,-1,1,0.015625,0,0.000"},
    { 215,  215, "Amount", "5;&H93,5,-1,1,40,0,0;&H93,14,-2,2,0.004,0,0.000"},
    { 215,  216, "Decay", "5;&H93,5,-1,1,40,0,0;&H93,24,-2,2,0.004,0,0.000"},
    {1215,   34, "Amount", "5;Const,,,,,,0,1000,2000,3000,4000,5000;&H5D,9,-2,2,0.004,0,0.000"},
    {1215,   37, "Decay", "5;Const,,,,,,0,1000,2000,3000,4000,5000;&H5D,19,-2,2,0.004,0,0.000"},
    { 230,  230, "Curve", "6;Const,,,,,,0,-30,-10,10,30,50,80;&H8E,11,-2,2,0.004,0,0.0"},
    { 240,  240, "Curve", "3;&H94,7,-3,1,0.0048828125,0,0.000;&H94,8,-3,2,0.00390625,0,0.00"},
    { 250,  250, "Curve", "3;&H7C,7,-3,1,1,-80,0;&H7C,8,-3,2,0.00390625,0,0.000"},
    { 256,  256, "Curve", "6;&HBA,11,-2,1,0.0195312,0,0.000;&HBA,12,-2,1,0.0078125,0,0.000"},
    { 270,  270, "Curve", "6;Const,,,,,,0,-30,-10,10,30,50,80;&HB9,11,-2,2,0.00390625,0,0.000"},
    { 280,  280, "Setting", "3;&H91,5,-2,1,1,-80,0;&H91,6,-2,1,0.0078125,0,0.000"},
    { 280,  281, "Boost", "2;&H91,5,-4,1,1,-80,0;&H91,8,-1,1,256,0,0"},
    { 290,  290, "Setting", "2;&H90,3,-2,1,1,-80,0;&H90,4,-2,1,0.0078125,0,0.000"},
    { 290,  291, "Boost", "2;&H90,3,-2,1,1,-80,0;&H90,6,-1,1,256,0,0"},
    { 300,  300, "Curve", "20,LockX,LockY;&H8A,1,2,2,1,0,0;&H8A,41,2,2,1,0,0"},
    {1300, 1300, "Curve", "20;&H60,1,2,2,1,0,0;&H60,41,2,2,1,0,0"},
    {2300, 2300, "Curve", "20;&H61,1,2,2,1,0,0;&H61,41,2,2,1,0,0"},
    { 350,  350, "RPM", "8;Const,,,,,,0,1000,2000,3000,4000,5000,6000,7000,8000;&HCB,99,-1,1,0.390625,50,0.0"},
    { 350,  351, "Voltage", "8;Const,,,,,,0.0,1,1.5,2,2.5,3,3.5,4,4.5;&HCB,100,1,1,0.390625,50,0.0"},
    {1340,   16, "Curve", "8;Const,,,,,,0.00,0.64,1.28,1.92,2.56,3.20,3.84,4.48,5.12;&HCE,92,2,2,0.1,0,0.0"},
    { 370,  370, "Air flow 1", "32;&HA0,1,2,2,0.005,0,0.000;&HA1,1,2,2,1,0,0"},
    { 370,  371, "Air flow 2", "32;&HA0,1,2,2,0.005,0,0.000;&HA2,1,2,2,1,0,0"},
    { 370,  372, "Air flow 3", "32;&HA0,1,2,2,0.005,0,0.000;&HA3,1,2,2,1,0,0"},
    { 370,  373, "Air flow 4", "32;&HA0,1,2,2,0.005,0,0.000;&HA4,1,2,2,1,0,0"},
    { 370,  374, "Air flow 5", "32;&HA0,1,2,2,0.005,0,0.000;&HA5,1,2,2,1,0,0"},
    { 380,   33, "Curve", "3;&H7E,5,-2,1,1,-80,0;&H7E,6,-2,1,0.0078125,0,0.000"},
    { 400,  400, "Curve", "2;&H98,3,-2,1,1,-80,0;&H98,4,-2,1,1,0,0"},
    { 410,  410, "Curve", "4;Const,,,,,,0,-30,-10,0,60;&H96,4,-1,1,1,0,0"},
    {1410, 1410, "Curve", "2;&H96,3,-2,1,1,-80,0;&H96,4,-2,1,1,0,0"},
    { 420,  420, "Curve", "6;Const,,,,,,0,8,9,10,12,14,16;&H9C,6,-1,1,0.015625,0,0.000"},
    { 430,  430, "Curve", "6;Const,,,,,,0,480,1000,2000,4000,8000,10000;&H9B,6,-1,1,1,0,0"},
    { 440,  440, "Curve", "6;Const,,,,,,0,480,1000,2000,4000,8000,10000;&H9E,6,-1,1,1,0,0"},
    { 450,  450, "Curve", "3;&H9A,5,-2,1,1,-80,0;&H9A,6,-2,1,1,0,0"},
    { 470,  470, "Curve", "4;&HBB,7,-2,1,0.01953125,0,0.000;&HBB,8,-2,1,1,-128,0"},
    {1470, 1470, "Curve", "4;&H99,7,-2,1,0.01953125,0,0.000;&H99,8,-2,1,1,0,0"},
    { 480,  480, "Curve", "2;&H9D,2,-1,1,4,0,0;&H9D,4,-1,1,256,0,0"},
    { 520,  520, "Curve", "6;Const,,,,,,0,6,8,10,12,14,16;&H92,11,-2,2,.004,0,0.000"},
    { 530,  530, "Curve", "6;Const,,,,,,0,6,8,10,12,14,16;&H9F,11,-2,2,.004,0,0.000"},
    { 540,  540, "Curve", "3;&H7B,5,-2,1,256,0,0;&H7B,6,-2,1,1,0,0"},
    { 700,  700, "Curve", "3;&H44,7,-3,1,1,0,0;&H44,8,-3,2,1,0,0"},
};

// lblRevIdle on frames 120 and 1120, lblGeneral on all others.
const LabelRow kLabels[] = {
    { 120, {"Rev Limit", "VTLI High", "VTLI Low", "F/C A/E", "F/C A/C", "Idle A/E", "Idle A/C", "?\?\?"}},
    {1120, {"Rev Limit", "F/C A/T", "F/C A.E", "F/C E/L", "F/C A/C", "Idle A/T", "Idle A.E", "Idle E/L", "Idle A/C"}},
    { 100, {"Boost", "Duty"}},
    {1100, {"Boost", "Duty"}},
    {2100, {"Boost", "Duty", "Secondary", "Secondary"}},
    { 130, {"RPM", "TPS1 (V)", "Low", "High"}},
    { 150, {"Thresh %", "Setting"}},
    { 155, {"Thresh V", "Setting"}},
    { 160, {"Thresh", "Setting"}},
    { 170, {"Inj Correction", "Setting"}},
    { 190, {"Version Name", "Version Number"}},
    { 200, {"TBD", "+80C", "+50C", "+30C", "+10C", "-10C", "-30C"}},
    { 215, {"RPM", "Amount", "Decay"}},
    {1215, {"1000", "2000", "3000", "4000", "5000", "Decay", "Amount", "RPM"}},
    { 230, {"+80C", "+50C", "+30C", "+10C", "-10C", "-30C"}},
    { 240, {"TPS (V/t)", "Setting"}},
    { 250, {"Temp", "Setting"}},
    { 256, {"TPS (V)", "Setting"}},
    { 270, {"+80C", "+50C", "+30C", "+10C", "-10C", "-30C"}},
    { 280, {"Temp", "Setting", "Boost"}},
    { 290, {"Temp", "Setting", "Boost"}},
    { 300, {"TBD", "RPM", "01", "02", "03", "04", "05", "06", "07", "08", "09", "10", "11", "12", "13", "14", "15", "16", "17", "18", "19", "20"}},
    {1300, {"PIM", "RPM", "01", "02", "03", "04", "05", "06", "07", "08", "09", "10", "11", "12", "13", "14", "15", "16", "17", "18", "19", "20"}},
    {2300, {"PIM", "RPM", "01", "02", "03", "04", "05", "06", "07", "08", "09", "10", "11", "12", "13", "14", "15", "16", "17", "18", "19", "20"}},
    { 350, {"1.0V", "1.5V", "2.0V", "2.5V", "3.0V", "3.5V", "4.0V", "4.5V", "8000rpm", "7000rpm", "6000rpm", "5000rpm", "4000rpm", "3000rpm", "2000rpm", "1000rpm"}},
    {1340, {"0.64V", "1.28V", "1.92V", "2.56V", "3.20V", "3.84V", "4.48V", "5.12V"}},
    { 380, {"Temp", "Setting"}},
    { 390, {"Temp", "Fan1 A/C", "Fan1 no A/C", "Fan2"}},
    { 400, {"Temp", "Retard"}},
    { 410, {"Temp", "Retard", "T1 (+60C)", "T2", "T3", "T4 (-30C)"}},
    {1410, {"Temp", "Retard"}},
    { 420, {"16V", "14V", "12V", "10V", "9V", "8V"}},
    { 430, {"RPM", "Adjust", "10000", "8000", "4000", "2000", "1000", "480"}},
    { 440, {"RPM", "Adjust", "10000", "8000", "4000", "2000", "1000", "480"}},
    { 450, {"Temp", "Retard"}},
    { 460, {"Boost", "S.F.", "1.0", "0.0"}},
    { 470, {"TPS (V)", "Adjust"}},
    {1470, {"TPS (V)", "Adjust"}},
    { 480, {"Rpm from idle", "Boost", "S.F.", "0.0", "1.0"}},
    { 500, {"Inj 1.", "Inj 2.", "Inj 3.", "Inj 4.", "Inj 5.", "Inj 6."}},
    {1500, {"Front Primary", "Front Secondary", "Rear Primary", "Rear Secondary", "Q Primary", "Q Secondary", "Pri/Sec transition (%)", "Sec transition (ms)"}},
    { 520, {"16V", "14V", "12V", "10V", "8V", "6V"}},
    { 530, {"16V", "14V", "12V", "10V", "8V", "6V"}},
    { 540, {"Boost", "Setting"}},
    { 550, {"Tuner string (8 char)"}},
    { 600, {"[1-2]", "%", "kph", "1.", "2.", "3.", "4.", "[2-3]", "1.", "2.", "3.", "4.", "[3-4]", "1.", "2.", "3.", "4."}},
    { 630, {"[2-1]", "%", "kph", "1.", "2.", "3.", "4.", "[3-2]", "1.", "2.", "3.", "4.", "[4-3]", "1.", "2.", "3.", "4."}},
    { 660, {"Narrow", "%", "kph", "1.", "2.", "3.", "Wide", "1.", "2.", "3."}},
    { 680, {"Narrow", "%", "kph", "1.", "2.", "3.", "Wide", "1.", "2.", "3."}},
    { 700, {"TPS%", "Setting"}},
};
// clang-format on

constexpr const char* kAntiLagCaptions[] = {"IGN Anti Lag Retard", "INJ Anti Lag",
                                            "*Antilag is not supported by all Power-FC's and this feature "
                                            "has been removed from Corvane's made after 16 "
                                            "Oct 2005."};

constexpr const char* kTabCaptions[kTabs] = {
    "INJ Map",    "IGN Map",    "IGT Map",    "VVT Map",    "VTEX Map",   "Base Map", "Settings 1",
    "Settings 2", "Settings 3", "Settings 4", "Settings 5", "Settings 6", "Zandrel"};

constexpr bool FrameHasRow(int frame) {
    for (const FrameRow& row : kFrames) {
        if (row.Frame == frame) return row.Tab >= kFirstSettingsTab && row.Tab < kGeneralTab;
    }
    return false;
}

template <class Run>
constexpr bool RunsAreSound(const Run& runs) {
    for (const auto& run : runs) {
        if (!FrameHasRow(run.Frame) || run.Last < run.First || run.From < 1 || run.Step < 1) return false;
        if (run.From + (run.Last - run.First) * run.Step != run.To) return false;
        if (run.First < run.Frame || run.Last > run.Frame + 39) return false;
        for (const auto& other : runs) {
            if (&other != &run && other.First <= run.Last && run.First <= other.Last) return false;
        }
    }
    return true;
}

template <class Rows>
constexpr bool RowsAreSound(const Rows& rows) {
    for (const auto& row : rows) {
        if (!FrameHasRow(row.Frame)) return false;
        for (const auto& other : rows) {
            if (&other != &row && other.Index == row.Index) return false;
        }
    }
    return true;
}

static_assert(std::size(kFrames) == 57);
static_assert(RunsAreSound(kTexts), "a run's counts disagree, its frame is missing, or two runs overlap");
static_assert(RunsAreSound(kChecks));
static_assert(RunsAreSound(kStrings));
static_assert(RowsAreSound(kOptions));
static_assert(RowsAreSound(kBits));
static_assert(RowsAreSound(kCurves));

// Geometry of the rev and idle frame, in twips: its height follows the last row that the build has.
constexpr float kRowTop = 300;
constexpr float kRowPitch = 315;
constexpr float kRowHeight = 285;

Control OnFrame(int frame) {
    Control control;
    control.Frame = frame;
    control.Tab = FraSettings[frame].Tab;
    return control;
}

void LoadFrames() {
    FraSettings.Members.clear();
    for (const FrameRow& row : kFrames) {
        Control frame;
        frame.Caption = row.Caption;
        frame.Tag = row.Tag;
        frame.Tab = row.Tab;
        frame.Visible = frame.Enabled = false;
        FraSettings.Members[row.Frame] = frame;
    }
}

void LoadTexts() {
    txtSetting.Members.clear();
    for (const TextRun& run : kTexts) {
        for (int i = run.First; i <= run.Last; ++i) {
            Control text = OnFrame(run.Frame);
            const int offset = run.From + (i - run.First) * run.Step;
            text.Tag = Join({run.Block, std::to_string(offset), std::to_string(run.Size), run.Scale,
                             run.Offset, run.Format},
                            ',');
            text.Top = kRowTop + static_cast<float>(i - run.Frame) * kRowPitch;
            text.Height = kRowHeight;
            txtSetting.Members[i] = text;
        }
    }
}

template <class Run>
void LoadRuns(ControlArray& array, const Run& runs,
              std::string_view (*last)(const decltype(*std::begin(runs))&)) {
    array.Members.clear();
    for (const auto& run : runs) {
        for (int i = run.First; i <= run.Last; ++i) {
            Control control = OnFrame(run.Frame);
            const int offset = run.From + (i - run.First) * run.Step;
            control.Tag = Join({run.Block, std::to_string(offset), std::string(last(run))}, ',');
            array.Members[i] = control;
        }
    }
}

void LoadLabels() {
    lblGeneral.Members.clear();
    lblRevIdle.Members.clear();
    lblAntiLag.Members.clear();
    for (const LabelRow& row : kLabels) {
        ControlArray& array = row.Frame == 120 || row.Frame == 1120 ? lblRevIdle : lblGeneral;
        int index = row.Frame;
        for (const char* caption : row.Captions) {
            Control label = OnFrame(row.Frame);
            label.Caption = caption;
            array.Members[index++] = label;
        }
    }
    for (int i = 0; i < 3; ++i) {
        Control label = OnFrame(550);
        label.Caption = kAntiLagCaptions[i];
        lblAntiLag.Members[i] = label;
    }
}

void LoadTabs() {
    SSTab1 = TabStrip{};
    for (int tab = 0; tab < kTabs; ++tab)
        SSTab1.TabCaption[static_cast<std::size_t>(tab)] = kTabCaptions[tab];
    SSTab1.TabVisible.fill(true);
}

}  // namespace

ControlArray FraSettings, txtSetting, chkSetting, chkSettingBit, optSetting, lblSetting, cmdEditCurve;
ControlArray lblGeneral, lblRevIdle, lblAntiLag;
Control lblInternalPullups, Text1, txtNotes, uctAirFlowGrid;
double AirFlowXScale = 0.005;
TabStrip SSTab1;

void LoadSettingsDesign() {
    LoadFrames();
    LoadTexts();
    LoadRuns(chkSetting, kChecks, [](const CheckRun& run) { return std::string_view(run.Polarity); });
    LoadRuns(lblSetting, kStrings, [](const StringRun& run) { return std::string_view(run.Length); });
    // Three texts stand on their tab and in no frame.
    const auto onTab = [](int index, int tab, const char* tag) {
        Control label;
        label.Tab = tab;
        label.Tag = tag;
        lblSetting.Members[index] = label;
    };
    onTab(100, 10, "&H69,1,80");
    onTab(628, 11, "&HDD,1,48");
    onTab(629, 11, "&HEB,1,72");

    chkSettingBit.Members.clear();
    for (const BitRow& row : kBits) {
        Control bit = OnFrame(row.Frame);
        bit.Tag = row.Tag;
        bit.Caption = row.Caption;
        chkSettingBit.Members[row.Index] = bit;
    }
    optSetting.Members.clear();
    for (const TagRow& row : kOptions) {
        Control option = OnFrame(row.Frame);
        option.Tag = row.Tag;
        optSetting.Members[row.Index] = option;
    }
    cmdEditCurve.Members.clear();
    for (const CurveRow& row : kCurves) {
        Control button = OnFrame(row.Frame);
        button.Tag = row.Tag;
        button.Caption = row.Caption;
        cmdEditCurve.Members[row.Index] = button;
    }
    LoadLabels();

    lblInternalPullups = OnFrame(550);
    lblInternalPullups.Caption =
        "*This option allows simple wiring and logging of switchs (good for Boost Switch feature) but "
        "reduces "
        "AN5-8 input accuracy. Only use if all AN5-8 are switch inputs.";
    Text1 = OnFrame(550);
    txtNotes = OnFrame(560);
    uctAirFlowGrid = OnFrame(370);
    SetXName("Voltage");
    SetXscale(0.005);
    LoadTabs();
}

std::vector<int> FramesOfTab(int tab) {
    std::vector<int> frames;
    for (const FrameRow& row : kFrames) {
        if (row.Tab == tab) frames.push_back(row.Frame);
    }
    return frames;
}

void SetXscale(double scale) {
    AirFlowXScale = scale;
}

void SetXName(const std::string& text) {
    uctAirFlowGrid.Caption = text;
}

std::array<std::string, 3> GeneralTexts() {
    return {"Only Power FC versions which we have tested will be supported by this software. ",
            "We have taken great care to ensure that our products are as safe as possible...BUT, please take "
            "extreme "
            "care when using this product. Inputting incorrect data into a POWER FC can damage your engine. "
            "If you "
            "have any doubts about this product or your ability to use it please DO NOT use this product.",
            std::string(
                "If your Power-FC version is not supported, please run the scan and send the scan file to ") +
                kSupportAddress + "."};
}

}  // namespace zandrel
