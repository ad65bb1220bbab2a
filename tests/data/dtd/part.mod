<!-- A part of DTDs that is found by its public identifier alone. -->
