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
const size_t kCallShapeCount = sizeof kCallShapes / sizeof kCallShapes[0];

#undef VN_V3_PARAMETERS

namespace {

constexpr char kSharpHead[] = R"(using System;
using System.Runtime.InteropServices;
)";

constexpr char kSharpWindow[] = R"(
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
)";

constexpr char kSharpRecord[] = R"(
[StructLayout(LayoutKind.Sequential)]
struct VnResponseRecord {
    public ushort valueType, valueLength;
    [MarshalAs(UnmanagedType.ByValArray, SizeConst = 48)] public byte[] address;
    [MarshalAs(UnmanagedType.ByValArray, SizeConst = 4096)] public byte[] value;
    [MarshalAs(UnmanagedType.ByValArray, SizeConst = 128)] public byte[] oid;
    public ushort oidLength;
    [MarshalAs(UnmanagedType.ByValArray, SizeConst = 34)] public byte[] reserved;
}
)";

constexpr char kCppHead[] = R"(#include <vndiscover.h>

#include <cstdio>
#include <cstdlib>
)";

constexpr char kCppWindow[] = R"(
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
)";

constexpr size_t kLineWidth = 96;

constexpr std::string_view kValuePlace = "VALUE";

std::string WithValue(std::string text, const std::string& value) {
    return text.replace(text.find(kValuePlace), kValuePlace.size(), value);
}

struct Parameter {
    std::string type, name;
};

std::optional<std::vector<Parameter>> ParametersOf(const std::string& name) {
    const auto* shape = FindIf(kCallShapes, [&](const auto& one) { return name == one.name; });
    if (!shape) return std::nullopt;
    std::vector<Parameter> parameters;
    for (const std::string& one : SplitText(shape->parameters, ",")) {
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

bool IsSweep(const Call& call) { return call.name.rfind("Discover", 0) == 0; }
// Its replies may have no terminating zero.
bool IsWsd(const Call& call) { return call.name == "DiscoverSoap"; }
bool IsStop(const Call& call) { return call.name.rfind("Stop", 0) == 0; }
bool IsPing(const Call& call) { return call.name == "VxPing"; }
bool IsText(const std::string& type) { return type == "const wchar_t*" || type == "const char*"; }

// As \ooo, since \x would include hex digits that follow.
std::string Octal(unsigned char byte) {
    std::string text = "\\";
    for (const int shift : {6, 3, 0}) text += static_cast<char>('0' + (byte >> shift & 7));
    return text;
}

// \uXXXX or \UXXXXXXXX
std::string CodePoint(uint32_t code) {
    char text[16];
    std::snprintf(text, sizeof text, code > 0xFFFF ? "\\U%08X" : "\\u%04X",
                  static_cast<unsigned>(code));
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
            literal += Octal(byte);
            ++at;
        } else {
            const auto [character, size, isUtf8] = FirstCharacter(text.substr(at));
            at += size;
            // The C1 controls have no names of this kind in C++.
            const bool isC1 = !isSharp && character < 0xA0;
            literal += isC1 ? Octal(static_cast<unsigned char>(character)) : CodePoint(character);
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

std::string CallOf(const Call& call, const std::vector<Parameter>& parameters,
                   const std::string& before, bool isSharp) {
    std::vector<std::string> arguments;
    arguments.reserve(parameters.size());
    for (const Parameter& parameter : parameters)
        arguments.push_back(Expression(call, parameter, isSharp));
    return Wrapped(before + call.name + "(", arguments, isSharp ? 12 : 8) + ";\n";
}

std::string CppText(const Call& call, const std::vector<Parameter>& parameters) {
    std::string text = kCppHead;
    text +=
        IsSweep(call) ? WithValue(kCppWindow, IsWsd(call) ? "2048" : "4095") : "\nint main() {\n";
    if (IsSweep(call) || IsStop(call)) return text + CallOf(call, parameters, "    ", false) + "}";
    if (IsPing(call)) {
        text += CallOf(call, parameters, "    const BYTE isThere = ", false);
        return text + "    std::printf(\"%s\\n\", isThere ? \"answered\" : \"no answer\");\n}";
    }
    text += "    VnResponseRecord record = {};\n";
    text += CallOf(call, parameters, "    const int32_t result = ", false);
    text +=
        R"(    std::printf("%d bytes, type %u: %.*s\n", (int)result, record.valueType, record.valueLength,
                (const char*)record.value);
})";
    return text;
}

std::string SharpText(const Call& call, const std::vector<Parameter>& parameters) {
    std::string text = kSharpHead;
    if (IsSweep(call)) {
        text += "using System.Windows.Forms;\n";
        text += WithValue(kSharpWindow,
                          IsWsd(call) ? "Marshal.PtrToStringAnsi(m.LParam, 2048).TrimEnd('\\0')"
                                      : "Marshal.PtrToStringAnsi(m.LParam)");
    }
    const bool hasRecord = !IsSweep(call) && !IsStop(call) && !IsPing(call);
    if (hasRecord) text += kSharpRecord;
    std::vector<std::string> declared;
    declared.reserve(parameters.size());
    for (const Parameter& parameter : parameters)
        declared.push_back(SharpType(parameter) + " " + parameter.name);
    text += "\nstatic class Program {\n    [DllImport(\"VnDiscover.dll\")]\n";
    const std::string result = IsPing(call) ? "byte " : "int ";
    text += Wrapped("    static extern " + result + call.name + "(", declared, 8) + ";\n\n";
    text += "    static void Main() {\n";
    if (IsSweep(call)) text += "        var window = new Results();\n";
    if (hasRecord) text += "        var record = new VnResponseRecord();\n";
    const char* const before = hasRecord      ? "        int result = "
                               : IsPing(call) ? "        byte isThere = "
                                              : "        ";
    text += CallOf(call, parameters, before, true);
    if (IsPing(call))
        text += "        Console.WriteLine(isThere != 0 ? \"answered\" : \"no answer\");\n";
    if (IsSweep(call)) text += "        GC.KeepAlive(window);\n";
    if (hasRecord)
        text +=
            "        Console.WriteLine(result + \" bytes, type \" + record.valueType + \": \" +\n"
            "            System.Text.Encoding.UTF8.GetString(record.value, 0, "
            "record.valueLength));\n";
    return text + "    }\n}";
}

// A word of the command line. Empty if the shell would not read it as one word, or not literally.
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

class Command {
  public:
    explicit Command(const std::string& start) : text_("vndiscover " + start) {}
    // `option` may be empty; a missing value adds nothing.
    void Add(const char* option, const CallArgument* argument) {
        if (!argument || argument->value.empty()) return;
        const auto word = Word(argument->value);
        isSafe_ &= word.has_value();
        if (*option) text_ += std::string(" ") + option;
        // Secrets come from the environment.
        text_ += argument->isSecret ? " \"%" + argument->value + "%\"" : " " + word.value_or("");
    }
    void AddFlag(const char* flag) { text_ += std::string(" ") + flag; }
    // The command takes passwords from the environment by itself.
    void AddUser(const Call& call) {
        if (!Find(call, "userName")) return Add("--community", Find(call, "readCommunity"));
        AddFlag("--v3");
        isSafe_ &= !Given(call, "userName").empty();  // the option requires a name
        Add("-u", Find(call, "userName"));
        if (Given(call, "useAuth") == "1") Add("-a", Find(call, "authProtocol"));
        if (Given(call, "usePriv") == "1") Add("-x", Find(call, "privProtocol"));
    }
    std::string Text() const { return isSafe_ ? text_ : ""; }

  private:
    std::string text_;
    bool isSafe_ = true;
};

std::string CommandText(const Call& call) {
    if (IsStop(call)) return "";
    if (IsWsd(call)) {
        const bool isForPrinters =
            Given(call, "probe").find("PrintDeviceType") != std::string::npos;
        Command command(isForPrinters ? "wsd" : "wsd --all");
        command.Add("--timeout", Find(call, "timeout"));
        return command.Text();
    }
    if (IsPing(call)) {
        Command command("ping");
        command.Add("", Find(call, "address"));
        command.Add("--timeout", Find(call, "timeout"));
        return command.Text();
    }
    Command command(IsSweep(call) ? "sweep" : "getnext");
    if (IsSweep(call)) {
        if (Given(call, "useIPv6") == "1") command.AddFlag("--ipv6");
        command.Add("--oid", Find(call, "oid"));
    } else {
        command.Add("", Find(call, "host"));
        command.Add("", Find(call, "oid"));
    }
    command.AddUser(call);
    return command.Text();
}

}  // namespace

std::string CallText(const Call& call, CallLanguage language) {
    const auto parameters = ParametersOf(call.name);
    if (!parameters) return "";
    switch (language) {
        case CallLanguage::kCpp:
            return CppText(call, *parameters);
        case CallLanguage::kCSharp:
            return SharpText(call, *parameters);
        default:
            return CommandText(call);
    }
}

std::string CallLine(const Call& call) {
    const auto parameters = ParametersOf(call.name);
    std::string line;
    for (const CallArgument& argument : call.arguments) {
        // An argument that the export does not have is part of another one.
        const bool isOwn = parameters && AnyOf(*parameters, [&](const Parameter& each) {
                               return each.name == argument.name;
                           });
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
