#include "model/asking/call_text.h"

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <utility>

#include "values/ranges.h"
#include "values/text.h"

namespace vndiscover::host {

#define VN_V3_PARAMETERS                                                                       \
    "const wchar_t* userName, BYTE useAuth, const wchar_t* authPassword, BYTE usePriv, const " \
    "wchar_t* privPassword, const wchar_t* authProtocol, const wchar_t* privProtocol"

const ExportShape kCallShapes[] = {
    {"DiscoverDevicesByOID",
     "HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6, const wchar_t* oid, const wchar_t* "
     "resultPath, const wchar_t* readCommunity, const wchar_t* writeCommunity"},
    {"DiscoverSnmpV3", "HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6, " VN_V3_PARAMETERS},
    {"DiscoverV3DevicesByOIDjson",
     "HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6, const wchar_t* "
     "jsonRequest, " VN_V3_PARAMETERS},
    {"DiscoverSoap", "HWND hWnd, UINT uMsg, UINT timeout, const char* probe, int32_t probeLength"},
    {"StopDiscoverSnmp", "void"},
    {"StopDiscoverSoap", "void"},
    {"GetNextSnmpRequestRaw",
     "const char* host, const char* oid, VnResponseRecord* record, uint32_t timeout, uint32_t "
     "retries, const char* readCommunity, const char* writeCommunity"},
    {"GetNextSnmpRequestV3",
     "const char* host, const char* oid, VnResponseRecord* record, uint32_t timeout, uint32_t "
     "retries, " VN_V3_PARAMETERS},
    {"VxPing", "const char* address, UINT timeout", "BYTE"}};

#undef VN_V3_PARAMETERS

namespace {

// In the programs below, THE_CALL is the call of the export or its declaration, and VALUE how the
// text of an answer is read: a WS-Discovery reply may have no terminating zero.
constexpr char kCppHead[] = R"(#include <vndiscover.h>

#include <cstdio>
#include <cstdlib>
)";

constexpr char kSharpHead[] = R"(using System;
using System.Runtime.InteropServices;
)";

struct Program {
    const char* start;  // of the exports' names
    const char* cpp;
    const char* sharpTypes;
    const char* sharpMain;
};
constexpr Program kPrograms[] = {
    {"Discover",
     R"(
// The sweep calls this on its own thread for each answer.
LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM address, LPARAM value) {
    if (message != WM_APP) return DefWindowProcA(window, message, address, value);
    if (address) std::printf("%s\t%.VALUEs\n", (const char*)address, (const char*)value);
    return 0;
}

int main() {
    WNDCLASSA type = {};
    type.lpfnWndProc = OnMessage;
    type.lpszClassName = "Results";
    RegisterClassA(&type);
    const HWND window = CreateWindowA("Results", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    THE_CALL;
})",
     R"(using System.Windows.Forms;

// A message-only window; the sweep calls it on this thread for each answer.
class Results : NativeWindow {
    public const uint Message = 0x8000;  // WM_APP

    public Results() { CreateHandle(new CreateParams { Parent = (IntPtr)(-3) }); }

    protected override void WndProc(ref Message m) {
        if (m.Msg != Message) {
            base.WndProc(ref m);
        } else if (m.WParam != IntPtr.Zero) {
            Console.WriteLine(Marshal.PtrToStringAnsi(m.WParam) + "\t" + VALUE);
        }
    }
}
)",
     R"(        var window = new Results();
        THE_CALL;
        GC.KeepAlive(window);
)"},
    {"Get",
     R"(
int main() {
    VnResponseRecord record = {};
    const int32_t result = THE_CALL;
    std::printf("%d bytes, type %u: %.*s\n", (int)result, record.valueType, record.valueLength,
                (const char*)record.value);
})",
     R"(
[StructLayout(LayoutKind.Sequential)]
struct VnResponseRecord {
    public ushort valueType, valueLength;
    [MarshalAs(UnmanagedType.ByValArray, SizeConst = 48)] public byte[] address;
    [MarshalAs(UnmanagedType.ByValArray, SizeConst = 4096)] public byte[] value;
    [MarshalAs(UnmanagedType.ByValArray, SizeConst = 128)] public byte[] oid;
    public ushort oidLength;
    [MarshalAs(UnmanagedType.ByValArray, SizeConst = 34)] public byte[] reserved;
}
)",
     R"(        var record = new VnResponseRecord();
        int result = THE_CALL;
        Console.WriteLine(result + " bytes, type " + record.valueType + ": " +
            System.Text.Encoding.UTF8.GetString(record.value, 0, record.valueLength));
)"},
    {"VxPing",
     R"(
int main() {
    const BYTE isThere = THE_CALL;
    std::printf("%s\n", isThere ? "answered" : "no answer");
})",
     "",
     R"(        byte isThere = THE_CALL;
        Console.WriteLine(isThere != 0 ? "answered" : "no answer");
)"},
    {"Stop", "\nint main() {\n    THE_CALL;\n}", "", "        THE_CALL;\n"}};

constexpr size_t kLineWidth = 96;

struct Parameter {
    std::string type, name;
};

const ExportShape* ShapeOf(const Call& call) {
    return FindIf(kCallShapes, [&](const auto& one) { return call.name == one.name; });
}

std::vector<Parameter> ParametersOf(const ExportShape& shape) {
    std::vector<Parameter> parameters;
    for (const std::string& one : SplitText(shape.parameters, ",")) {
        const size_t start = one.front() == ' ' ? 1 : 0, end = one.rfind(' ');
        if (one != "void")
            parameters.push_back({one.substr(start, end - start), one.substr(end + 1)});
    }
    return parameters;
}

const CallArgument* Find(const Call& call, std::string_view name) {
    return FindIf(call.arguments, [&](const auto& argument) { return argument.name == name; });
}

std::string Given(const Call& call, std::string_view name) {
    const CallArgument* argument = Find(call, name);
    return argument ? argument->value : "";
}

bool IsWsd(const Call& call) { return call.name == "DiscoverSoap"; }
bool IsText(const std::string& type) { return type == "const wchar_t*" || type == "const char*"; }

// As \ooo, \uXXXX or \UXXXXXXXX, since \x would include hex digits that follow.
std::string Escape(unsigned code, bool isOctal) {
    char text[16];
    const char* const format = isOctal ? "\\%03o" : code > 0xFFFF ? "\\U%08X" : "\\u%04X";
    std::snprintf(text, sizeof text, format, code);
    return text;
}

// A string literal. What is not printable ASCII is escaped as bytes or as code points.
std::string Literal(std::string_view text, bool isSharp, bool isNarrow) {
    std::string literal = "\"";
    for (size_t at = 0; at < text.size();) {
        const auto byte = static_cast<unsigned char>(text[at]);
        if (byte == '"' || byte == '\\') {
            literal += std::string("\\") + text[at++];
        } else if (byte >= ' ' && byte < 0x7F) {
            literal += text[at++];
        } else if (!isSharp && (isNarrow || byte < 0x80)) {
            literal += Escape(byte, true);
            ++at;
        } else {
            const auto [character, size, isUtf8] = FirstCharacter(text.substr(at));
            at += size;
            // The C1 controls have no names of this kind in C++.
            literal += Escape(character, !isSharp && character < 0xA0);
        }
    }
    return literal + "\"";
}

std::string Expression(const Call& call, const Parameter& parameter, bool isSharp) {
    const CallArgument* given = Find(call, parameter.name);
    const bool isWide = parameter.type == "const wchar_t*";
    if (parameter.type == "HWND") return isSharp ? "window.Handle" : "window";
    if (parameter.name == "uMsg") return isSharp ? "Results.Message" : "WM_APP";
    if (parameter.name == "record") return isSharp ? "ref record" : "&record";
    if (parameter.name == "probeLength")
        return std::to_string(Given(call, "probe").size());  // a narrow literal has as many bytes
    if (!IsText(parameter.type)) return given ? given->value : "0";
    if (!given) return isSharp ? "null" : "nullptr";
    if (given->isSecret) {
        if (isSharp) return "Environment.GetEnvironmentVariable(\"" + given->value + "\")";
        return isWide ? "_wgetenv(L\"" + given->value + "\")"
                      : "std::getenv(\"" + given->value + "\")";
    }
    const std::string literal = Literal(given->value, isSharp, !isWide);
    if (isSharp && parameter.name == "probe")
        return "System.Text.Encoding.UTF8.GetBytes(" + literal + ")";
    return !isSharp && isWide ? "L" + literal : literal;
}

// Of a parameter, or of a result, which has no name.
std::string SharpType(const Parameter& parameter) {
    constexpr std::pair<const char*, const char*> kTypes[] = {
        {"HWND", "IntPtr"},
        {"UINT", "uint"},
        {"uint32_t", "uint"},
        {"int32_t", "int"},
        {"BYTE", "byte"},
        {"VnResponseRecord*", "ref VnResponseRecord"},
        {"const wchar_t*", "[MarshalAs(UnmanagedType.LPWStr)] string"},
        {"const char*", "[MarshalAs(UnmanagedType.LPStr)] string"}};
    if (parameter.name == "probe") return "byte[]";
    const auto* known =
        FindIf(kTypes, [&](const auto& one) { return parameter.type == one.first; });
    return known ? known->second : "";
}

// NAME(ONE, OTHER), wrapped into lines.
std::string Wrapped(std::string line, const std::vector<std::string>& parts, size_t indent) {
    std::string text;
    for (size_t index = 0; index < parts.size(); ++index) {
        const std::string part = parts[index] + (index + 1 < parts.size() ? "," : "");
        const bool isFirst = index == 0;
        if (!isFirst && line.size() + part.size() + 1 > kLineWidth) {
            text += line + "\n";
            line = std::string(indent, ' ');
        } else if (!isFirst) {
            line += ' ';
        }
        line += part;
    }
    return text + line + ")";
}

// `program` with `name` and `parts` in its place, in lines of at most kLineWidth.
std::string Filled(std::string program, const std::string& name,
                   const std::vector<std::string>& parts, size_t indent) {
    constexpr std::string_view kPlace = "THE_CALL";
    const size_t at = program.find(kPlace), line = program.rfind('\n', at) + 1;
    return program.replace(line, at + kPlace.size() - line,
                           Wrapped(program.substr(line, at - line) + name + "(", parts, indent));
}

std::string WithValue(std::string program, const char* value) {
    constexpr std::string_view kPlace = "VALUE";
    const size_t at = program.find(kPlace);
    if (at != std::string::npos) program.replace(at, kPlace.size(), value);
    return program;
}

std::string ProgramText(const Call& call, const ExportShape& shape, const Program& program,
                        bool isSharp) {
    std::vector<std::string> arguments, declared;
    for (const Parameter& parameter : ParametersOf(shape)) {
        arguments.push_back(Expression(call, parameter, isSharp));
        declared.push_back(SharpType(parameter) + " " + parameter.name);
    }
    if (!isSharp) {
        return kCppHead + Filled(WithValue(program.cpp, IsWsd(call) ? "2048" : "4095"), call.name,
                                 arguments, 8);
    }
    const std::string types = WithValue(
        program.sharpTypes, IsWsd(call) ? "Marshal.PtrToStringAnsi(m.LParam, 2048).TrimEnd('\\0')"
                                        : "Marshal.PtrToStringAnsi(m.LParam)");
    const std::string start =
        "\nstatic class Program {\n    [DllImport(\"VnDiscover.dll\")]\n    static extern " +
        SharpType({shape.result, ""}) + " THE_CALL;\n\n    static void Main() {\n";
    return kSharpHead + types + Filled(start, call.name, declared, 8) +
           Filled(program.sharpMain, call.name, arguments, 12) + "    }\n}";
}

// Of a command line. A word is empty if the shell would not read it literally and as one word.
using Words = std::vector<std::optional<std::string>>;

std::optional<std::string> Word(const std::string& value) {
    const auto isPlain = [](char letter) {
        return std::isalnum(static_cast<unsigned char>(letter)) || (letter & 0x80) ||
               std::string_view("._:/-").find(letter) != std::string_view::npos;
    };
    const auto isUnsafe = [](char letter) {
        return static_cast<unsigned char>(letter) < ' ' || letter == '"' || letter == '%' ||
               letter == '!';
    };
    if (value.empty() || value[0] == '-' || AnyOf(value, isUnsafe)) return std::nullopt;
    if (AllOf(value, isPlain)) return value;
    // A program reads a backslash before a quote as an escape.
    const size_t ends = value.size() - (value.find_last_not_of('\\') + 1);
    return "\"" + value + std::string(ends, '\\') + "\"";
}

// `option` may be empty; a missing value adds nothing.
void Add(Words& words, const char* option, const CallArgument* argument) {
    if (!argument || argument->value.empty()) return;
    if (*option) words.emplace_back(option);
    // Secrets come from the environment.
    words.push_back(argument->isSecret ? "\"%" + argument->value + "%\"" : Word(argument->value));
}

// The command reads passwords from the environment by itself.
void AddUser(Words& words, const Call& call) {
    const CallArgument* const user = Find(call, "userName");
    if (!user) return Add(words, "--community", Find(call, "readCommunity"));
    words.emplace_back("--v3");
    words.emplace_back("-u");
    words.push_back(Word(user->value));  // the option requires a name
    if (Given(call, "useAuth") == "1") Add(words, "-a", Find(call, "authProtocol"));
    if (Given(call, "usePriv") == "1") Add(words, "-x", Find(call, "privProtocol"));
}

std::string CommandText(const Call& call) {
    const bool isPing = call.name == "VxPing", isSweep = call.name.rfind("Discover", 0) == 0;
    Words words = {"vndiscover"};
    if (IsWsd(call) || isPing) {
        words.emplace_back(isPing ? "ping" : "wsd");
        const bool isForPrinters =
            Given(call, "probe").find("PrintDeviceType") != std::string::npos;
        if (!isPing && !isForPrinters) words.emplace_back("--all");
        Add(words, "", Find(call, "address"));
        Add(words, "--timeout", Find(call, "timeout"));
    } else {
        words.emplace_back(isSweep ? "sweep" : "getnext");
        if (Given(call, "useIPv6") == "1") words.emplace_back("--ipv6");
        Add(words, "", Find(call, "host"));
        Add(words, isSweep ? "--oid" : "", Find(call, "oid"));
        AddUser(words, call);
    }
    const bool isSafe = AllOf(words, [](const auto& word) { return word.has_value(); });
    return isSafe ? JoinedAs(
                        words, [](const auto& word) { return *word; }, " ")
                  : "";
}

}  // namespace

std::string CallText(const Call& call, CallLanguage language) {
    const ExportShape* const shape = ShapeOf(call);
    const Program* const program =
        FindIf(kPrograms, [&](const auto& one) { return call.name.rfind(one.start, 0) == 0; });
    if (!shape || !program) return "";
    if (language != CallLanguage::kCommand)
        return ProgramText(call, *shape, *program, language == CallLanguage::kCSharp);
    return call.name.rfind("Stop", 0) == 0 ? "" : CommandText(call);
}

std::string CallLine(const Call& call) {
    const ExportShape* const shape = ShapeOf(call);
    const auto parameters = shape ? ParametersOf(*shape) : std::vector<Parameter>();
    std::string line;
    for (const CallArgument& argument : call.arguments) {
        // An argument that the export does not have is part of another one.
        const bool isOwn =
            AnyOf(parameters, [&](const auto& one) { return one.name == argument.name; });
        if (!isOwn || argument.name == "probe") continue;
        const bool isNumber = !argument.value.empty() &&
                              argument.value.find_first_not_of("0123456789") == std::string::npos;
        line += (line.empty() ? "" : ", ") + argument.name + " ";
        line += argument.isSecret ? "(secret)"
                : isNumber        ? argument.value
                                  : Literal(argument.value, true, false);
    }
    return call.name + "(" + line + ")";
}

}  // namespace vndiscover::host
