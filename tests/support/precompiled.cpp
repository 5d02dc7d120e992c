// Nothing: the headers that all tests include are precompiled for this file.
