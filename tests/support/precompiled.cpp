// Empty: the headers in front of it are what this object is compiled for.
