"""Changes to the sources that the unit tests should notice; scripts/mutate runs it."""
