// The window behind modMsgBox: a message box or an input box that sizes itself to its text and buttons.
#pragma once
