// Numbers of the resources in vnbrowser.rc, and of the commands.
#pragma once

#define IDD_SNMP 102
#define IDD_CALLS 103
#define IDD_WALK 104
#define IDD_TABLE 105
#define IDD_ADD 106
#define IDD_REPORT 107

// Controls of the main window.
#define IDC_FIND 200
#define IDC_PRESET_LABEL 201
#define IDC_PRESET 202
#define IDC_V1 203
#define IDC_V3 204
#define IDC_WSD 205
#define IDC_IPV4 206
#define IDC_IPV6 207
#define IDC_FILTER_LABEL 208
#define IDC_FILTER 209
#define IDC_DEVICES_LABEL 210
#define IDC_DEVICES 211
#define IDC_DETAILS_LABEL 212
#define IDC_DETAILS 213
#define IDC_STATUS 214
#define IDC_PAGES 215
#define IDC_PRESET_NOTE 217
#define IDC_READ_BAR 218
#define IDC_CHOSEN 219
#define IDC_COPY_COMMANDS 220

// Controls of the dialogs.
#define IDC_COMMUNITY 230
#define IDC_USER 231
#define IDC_AUTH 232
#define IDC_AUTH_PASSWORD 233
#define IDC_PRIV 234
#define IDC_PRIV_PASSWORD 235
#define IDC_PROFILE 236
#define IDC_PROFILE_NOTE 237
#define IDC_ROWS 240
#define IDC_CALL_TEXT 241
#define IDC_CALL_CPP 242  // these three are consecutive
#define IDC_CALL_CSHARP 243
#define IDC_CALL_COMMAND 244
#define IDC_WALK_ROOT 245
#define IDC_WALK_STATE 247
#define IDC_WALK_START 248
#define IDC_COPY_ROW 249
#define IDC_COPY_TABLE 250
#define IDC_CALL_COPY 251
#define IDC_PROFILE_DELETE 252
#define IDC_TABLE_NOTE 254
#define IDC_TABLE_SAVE 256
#define IDC_ADD_HOSTS 257
#define IDC_ADD_FILE 258

// Commands that have no text. The number of any other command is that of its text.
#define IDM_NEXT_PAGE 334
#define IDM_PREVIOUS_PAGE 335
#define IDM_NEXT_PANE 337
#define IDM_COLUMN 420  // plus a Column: shows or hides it; also the number of its heading
#define IDM_CELL 740    // plus a Column: copies its cell

#ifndef RC_INVOKED
enum TextId : unsigned {
#define VN_TEXT(name, number, text) name = number,  // NOLINT(bugprone-macro-parentheses)
#include "window/texts.inc"
#undef VN_TEXT
};
#endif
