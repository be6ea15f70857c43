// What the editor works on, without its widgets: the keys of one use as they were read and as they are now.
#pragma once
