// GNUstep declares what it needs of this itself.
