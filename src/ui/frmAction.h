// The action window: shows the current path of a run, its profiles and what is to be done, and does it.
#pragma once
