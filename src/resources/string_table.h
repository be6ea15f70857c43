// Every text that the windows show and every name in the settings files, by identifier.
#pragma once

#include <cstddef>

namespace quendle {

namespace text_id {
inline constexpr int kNotInstalled = 1403;
inline constexpr int kAskExtractFolder = 1801;
inline constexpr int kAskMoveFolder = 1802;
inline constexpr int kAskCopyFolder = 1803;
inline constexpr int kAskProfileName = 1851;
inline constexpr int kAddProfile = 1852;
inline constexpr int kSameProfileName = 1857;
inline constexpr int kNoProfile = 1861;
inline constexpr int kRunTimeError = 6401;
inline constexpr int kFolder = 1862;
inline constexpr int kUnregisteredFile = 1863;
inline constexpr int kGeneral = 5001;
inline constexpr int kPattern = 5002;
inline constexpr int kExtractTo = 5003;
inline constexpr int kMoveTo = 5004;
inline constexpr int kCopyTo = 5005;
inline constexpr int kId = 5006;
inline constexpr int kAction = 5008;
inline constexpr int kSmartRename = 5009;
inline constexpr int kExtractType = 5010;
inline constexpr int kSmartMakeDir = 5011;
inline constexpr int kOpenDir = 5012;
inline constexpr int kInclude = 5013;
inline constexpr int kExclude = 5014;
inline constexpr int kOpenFile = 5015;
inline constexpr int kConfirmAlways = 5051;
inline constexpr int kCheckArchive = 5052;
inline constexpr int kConfirmOverwrite = 5053;
inline constexpr int kShowResult = 5054;
inline constexpr int kKeyCheck = 5055;
inline constexpr int kTest = 5059;
inline constexpr int kAutoCompDir = 5060;
inline constexpr int kFiler = 5061;
inline constexpr int kFilerParm = 5062;
inline constexpr int kArchiveCharset = 5063;
inline constexpr int kStandardFile = 5101;
inline constexpr int kItemsFile = 5102;
inline constexpr int kTestFile = 5103;
inline constexpr int kUnregistered = 6000;
inline constexpr int kInBrackets = 6001;
inline constexpr int kExtractStep = 6002;
inline constexpr int kMoveStep = 6003;
inline constexpr int kCopyStep = 6004;
inline constexpr int kStepFailed = 6005;
inline constexpr int kMoreProblems = 6006;
inline constexpr int kPlanNothing = 6200;
inline constexpr int kPlanStep = 6201;
inline constexpr int kPlanEntries = 6202;
inline constexpr int kPlanReason = 6203;
inline constexpr int kPlanCaption = 6204;
inline constexpr int kPlanLeftOut = 6207;
inline constexpr int kPlanAsks = 6208;
inline constexpr int kRegexMatch = 6501;
inline constexpr int kRegexUnmatch = 6502;
inline constexpr int kRegexError = 6503;
inline constexpr int kAboutCaption = 6510;
inline constexpr int kCompiled = 6511;
inline constexpr int kRights = 6512;
inline constexpr int kLicence = 6513;
inline constexpr int kUnknownVersion = 6514;
inline constexpr int kCredit = 6515;
}  // namespace text_id

struct StringTableEntry {
  int id;
  const char* text;  // UTF-8
};

// In ascending order of `id`.
extern const StringTableEntry kStringTable[];
extern const std::size_t kStringTableSize;

}  // namespace quendle
