// Empty: only its precompiled header counts, with the headers that test programs share.
