// Nothing: a target that exists for its precompiled header must have a source.
