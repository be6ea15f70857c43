// The arithmetic of the message and input box, in twips, without widgets.
#pragma once
