// Nothing: what this is compiled with is what counts, the headers that test programs share.
