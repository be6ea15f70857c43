// The window that shows how far an operation is.
#pragma once
