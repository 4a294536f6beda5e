/* A minimal machine DLL for the machine database tests: it only describes itself. The records
 * follow the C layout of the Buzz machine interface, declared here from that layout. Built as a
 * generator unless TEST_EFFECT is defined; TEST_NO_GETINFO leaves the GetInfo export out. */

typedef struct TestParameter
{
    int type; /* 0 note, 1 switch, 2 byte, 3 word */
    const char* name;
    const char* description;
    int minValue;
    int maxValue;
    int noValue;
    int flags;
    int defaultValue;
} TestParameter;

typedef struct TestAttribute
{
    const char* name;
    int minValue;
    int maxValue;
    int defaultValue;
} TestAttribute;

typedef struct TestMachineInfo
{
    int type;
    int version;
    int flags;
    int minTracks;
    int maxTracks;
    int numGlobalParameters;
    int numTrackParameters;
    const TestParameter* const* parameters;
    int numAttributes;
    const TestAttribute* const* attributes;
    const char* name;
    const char* shortName;
    const char* author;
    const char* commands;
    void* lastFields[2];
} TestMachineInfo;

#ifndef TEST_EFFECT

static const TestParameter volume = {3, "Volume", "Volume (0-FFFE)", 0, 0xFFFE, 0xFFFF, 6, 0x4000};
static const TestParameter attack = {2, "Attack", "Attack time", 1, 0xFE, 0xFF, 2, 10};
static const TestParameter wave = {2, "Wave", "Wave shape", 0, 4, 0xFF, 2, 0};
static const TestParameter note = {0, "Note", "Note to play", 1, 0x9C, 0, 0, 0};
static const TestParameter* const parameters[] = {&volume, &attack, &wave, &note};

static const TestMachineInfo info = {1, 15, 0, 1, 16, 3, 1, parameters, 0, 0,
                                     "Test Generator", "TestGen", "Tonalmancer tests", 0, {0, 0}};

#else

static const TestParameter mix = {2, "Dry/Wet", "Mix", 0, 100, 0xFF, 2, 50};
static const TestParameter time = {3, "Time", "Delay time", 1, 0x8000, 0, 2, 300};
static const TestParameter odd = {7, "Odd", "A type the program does not know", 0, 1, 0xFF, 2, 1};
static const TestParameter* const parameters[] = {&mix, &time, &odd};

static const TestMachineInfo info = {2, 15, 0, 0, 0, 3, 0, parameters, 0, 0,
                                     "Test Effect", "TestFx", "Tonalmancer tests", 0, {0, 0}};

#endif

#ifndef TEST_NO_GETINFO
__declspec(dllexport) const TestMachineInfo* GetInfo(void)
{
    return &info;
}
#else
__declspec(dllexport) const TestMachineInfo* Describe(void)
{
    return &info;
}
#endif
