#include "resources/string_table.h"

namespace quendle {

const StringTableEntry kStringTable[] = {
    {1801, "解凍先のフォルダを指定してください。"},
    {1802, "移動先のフォルダを指定してください。"},
    {1803, "コピー先のフォルダを指定してください。"},
    {1861, "（なし）"},
    {5001, "General"},
    {5002, "Pattern"},
    {5003, "ExtractTo"},
    {5004, "MoveTo"},
    {5005, "CopyTo"},
    {5006, "ID"},
    {5008, "Action"},
    {5009, "SmartRename"},
    {5010, "ExtractType"},
    {5011, "SmartMakeDir"},
    {5012, "OpenDir"},
    {5013, "Include"},
    {5014, "Exclude"},
    {5015, "OpenFile"},
    {5051, "ConfirmAlways"},
    {5052, "CheckArchive"},
    {5053, "ConfirmOverwrite"},
    {5054, "ShowResult"},
    {5055, "KeyCheck"},
    {5059, "Test"},
    {5060, "AutoCompDir"},
    {5061, "FILER"},
    {5062, "FILERPARM"},
    {5063, "ArchiveCharset"},
    {5101, "mover.ini"},
    {5102, "items.ini"},
    {5103, "test.ini"},
};

const std::size_t kStringTableSize = sizeof kStringTable / sizeof kStringTable[0];

}  // namespace quendle
