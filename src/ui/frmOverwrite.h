// The question whether an existing file may be replaced.
#pragma once
