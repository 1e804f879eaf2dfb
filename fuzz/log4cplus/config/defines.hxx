// Nothing that log4cplus looks for in the system when it is built.
