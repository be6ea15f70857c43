// The list of profiles without its widgets.
#pragma once
