// GNUstep declares NSObject itself.
