// The version of a file.
#pragma once
